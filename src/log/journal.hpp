#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace brindex::Journal {

// The log file's place, given once by the platform at start-up.
void definirChemin(std::string chemin);
const std::string& chemin();

// Appends "time stamp, space, message, line feed" to the log file; opens and closes the file
// each time, creates it when missing, never truncates it, and never fails: a line that can't
// be written is lost.
void ecrire(std::string_view message) noexcept;

// UTC ISO 8601 to the second, for instance 2026-03-05T14:07:09Z.
std::string horodatage(std::chrono::system_clock::time_point moment);

}  // namespace brindex::Journal
