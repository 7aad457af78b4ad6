#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace brindex::Journal {

// The log file's place, given once by the platform at start-up.
void definirChemin(std::string chemin);
const std::string& chemin();

// Appends "time stamp, space, message, line feed" to the log file; opens and closes the file
// each time, creates it when missing, never truncates it, and never fails: a line that can't
// be written is lost. Only a regular file is written (a symbolic link to one is followed), and
// opening never waits: a FIFO or a device in the log's place loses the line instead of
// blocking the application.
void ecrire(std::string_view message) noexcept;

// The longest message a line carries, in bytes once escaped. Pages and servers choose much of
// what is logged (addresses, reasons): the log must stay readable and small whatever they send.
inline constexpr std::size_t longueurMessageMax = 2000;

// The message as it is written: one line whatever it holds (bytes below 0x20, 0x7F and bytes
// that are not UTF-8 written as "\xHH"), cut past longueurMessageMax with a visible mark that
// gives the whole length.
std::string messageSur(std::string_view message);

// A URL as the log may hold it: scheme, host, port and path only. Queries, fragments and user
// info carry what must never be written down: sign-in codes and states, SAML messages, tokens,
// passwords. Every line about an address goes through it.
std::string adresse(std::string_view url);

// UTC ISO 8601 to the second, for instance 2026-03-05T14:07:09Z.
std::string horodatage(std::chrono::system_clock::time_point moment);

}  // namespace brindex::Journal
