#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brindex {

// How the windows and the pages are drawn. Without a GPU, GL runs in software (llvmpipe and the
// like) at twice the memory and several times the processor of drawing with cairo and without
// WebKit's compositing; with a GPU, the toolkit's and the engine's own choices are best.
struct ChoixRendu {
    bool logiciel = false;         // GL would run in software
    bool rendeurCairo = false;     // GTK draws with cairo (set before its first window)
    bool sansComposition = false;  // WebKit never composites in hardware
    bool sansGl = false;           // GTK doesn't prepare GL when it opens the display
    bool sansDmabuf = false;       // WebKit hands pages over in shared memory, not through GL
    std::string ligneJournal;
};

// `rendeurGl`: the GL renderer string of a context made for the probe, or nothing when none
// could be made. `gskImpose`, `compositionImposee`: the user chose through the environment
// (GSK_RENDERER, WEBKIT_DISABLE_COMPOSITING_MODE), which always wins.
ChoixRendu choisirRendu(const std::optional<std::string>& rendeurGl, bool gskImpose,
                        bool compositionImposee);

// Before the toolkit opens the display. Without a graphics device (no render node, no
// proprietary driver's device), GL can only run in software: the choice needs no probe, and
// GTK need not prepare GL at all, which spares each launch loading a software GL driver (about
// a tenth of a second, and its memory). WebKit then needn't look for GL either (its DMA-BUF
// renderer, which WEBKIT_DISABLE_DMABUF_RENDERER turns off, and the render node it looks for
// through EGL): no software GL driver is loaded in the application at all. Nothing when there
// is a device: the probe decides. `dmabufImpose`: the user set that variable, which wins.
std::optional<ChoixRendu> choisirRenduSansCarte(bool carteGraphique, bool gskImpose,
                                                bool compositionImposee, bool dmabufImpose);

}  // namespace brindex
