# Builds the macOS edition on Linux, to check that it compiles and links: clang for arm64 and
# x86_64 (one universal binary), macOS 13, the macOS SDK as sysroot, ld64.lld as linker and
# llvm-lipo to join the architectures. Nothing built this way runs here, and it is not signed.
#
#   cmake -S . -B build-macos -G Ninja --toolchain cmake/macos-croise.cmake \
#         -DBRINDEX_SDK_MACOS=<SDK root> -DBRINDEX_CADRES_MACOS=<linkable frameworks>
#   cmake --build build-macos --target Brindex
#
# BRINDEX_SDK_MACOS is the SDK's root (the folder holding System/ and usr/).
# BRINDEX_CADRES_MACOS is searched before the SDK's frameworks: the SDKs published for other
# platforms ship WebKit's stubs for Mac Catalyst only and AppKit's without their re-export of
# UIFoundation; scripts/verifier-bundle-macos prepares a folder with both repaired.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22.0)
set(CMAKE_SYSTEM_PROCESSOR arm64)

foreach(variable BRINDEX_SDK_MACOS BRINDEX_CADRES_MACOS)
    if(NOT ${variable} AND DEFINED ENV{${variable}})
        set(${variable} $ENV{${variable}})
    endif()
    if(NOT IS_DIRECTORY "${${variable}}")
        message(FATAL_ERROR "${variable} must name a folder (see cmake/macos-croise.cmake)")
    endif()
    # Try-compiles see the same folders.
    list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ${variable})
endforeach()

set(CMAKE_OSX_SYSROOT ${BRINDEX_SDK_MACOS})
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0 CACHE STRING "Oldest macOS the application runs on")
set(CMAKE_OSX_ARCHITECTURES "arm64;x86_64" CACHE STRING "Architectures of the bundle")

find_program(BRINDEX_CLANG NAMES clang++ clang++-14 REQUIRED)
find_program(BRINDEX_LD64 NAMES ld64.lld ld64.lld-14 REQUIRED)
find_program(BRINDEX_LIPO NAMES llvm-lipo llvm-lipo-14 REQUIRED)
# LLVM's own tools stand for Apple's: static archives of Mach-O objects, install names.
find_program(CMAKE_AR NAMES llvm-ar llvm-ar-14 REQUIRED)
find_program(CMAKE_RANLIB NAMES llvm-ranlib llvm-ranlib-14 REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL NAMES llvm-install-name-tool llvm-install-name-tool-14
             REQUIRED)
foreach(langage C CXX OBJCXX)
    set(CMAKE_${langage}_COMPILER ${BRINDEX_CLANG})
    set(CMAKE_${langage}_COMPILER_TARGET arm64-apple-macos13)
endforeach()

# clang finds `lipo` (to join each object's architectures) and `ld64.lld` through -B.
set(BRINDEX_OUTILS_MACOS ${CMAKE_BINARY_DIR}/outils-macos)
file(MAKE_DIRECTORY ${BRINDEX_OUTILS_MACOS})
file(CREATE_LINK ${BRINDEX_LIPO} ${BRINDEX_OUTILS_MACOS}/lipo SYMBOLIC)
file(CREATE_LINK ${BRINDEX_LD64} ${BRINDEX_OUTILS_MACOS}/ld64.lld SYMBOLIC)
set(BRINDEX_DRAPEAUX "-B${BRINDEX_OUTILS_MACOS} -F${BRINDEX_CADRES_MACOS} -stdlib=libc++")
set(CMAKE_CXX_FLAGS_INIT "${BRINDEX_DRAPEAUX}")
set(CMAKE_OBJCXX_FLAGS_INIT "${BRINDEX_DRAPEAUX}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${BRINDEX_DRAPEAUX} -fuse-ld=lld")

set(CMAKE_FIND_ROOT_PATH ${BRINDEX_SDK_MACOS})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
