#include "log/journal.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "address/texte.hpp"

namespace brindex::Journal {

namespace {

std::string& cheminJournal() {
    static std::string chemin;
    return chemin;
}

// Civil date from a count of days since 1970-01-01 (proleptic Gregorian calendar).
void dateCivile(std::int64_t jours, std::int64_t& annee, unsigned& mois, unsigned& jour) {
    jours += 719468;
    const std::int64_t ere = (jours >= 0 ? jours : jours - 146096) / 146097;
    const auto jourEre = static_cast<unsigned>(jours - ere * 146097);
    const unsigned anneeEre = (jourEre - jourEre / 1460 + jourEre / 36524 - jourEre / 146096) / 365;
    const unsigned jourAnnee = jourEre - (365 * anneeEre + anneeEre / 4 - anneeEre / 100);
    const unsigned mp = (5 * jourAnnee + 2) / 153;
    jour = jourAnnee - (153 * mp + 2) / 5 + 1;
    mois = mp < 10 ? mp + 3 : mp - 9;
    annee = static_cast<std::int64_t>(anneeEre) + ere * 400 + (mois <= 2 ? 1 : 0);
}

}  // namespace

void definirChemin(std::string chemin) {
    cheminJournal() = std::move(chemin);
}

const std::string& chemin() {
    return cheminJournal();
}

std::string adresse(std::string_view url) {
    url = url.substr(0, url.find_first_of("?#"));
    const auto autorite = url.find("//");
    if (autorite == std::string_view::npos) return std::string(url);
    const auto debut = autorite + 2;
    const auto arobase = url.substr(debut, url.find('/', debut) - debut).rfind('@');
    if (arobase == std::string_view::npos) return std::string(url);
    return std::string(url.substr(0, debut)).append(url.substr(debut + arobase + 1));
}

std::string horodatage(std::chrono::system_clock::time_point moment) {
    const std::int64_t secondes =
        std::chrono::duration_cast<std::chrono::seconds>(moment.time_since_epoch()).count();
    std::int64_t jours = secondes / 86400;
    std::int64_t reste = secondes % 86400;
    if (reste < 0) {
        reste += 86400;
        --jours;
    }
    std::int64_t annee;
    unsigned mois;
    unsigned jour;
    dateCivile(jours, annee, mois, jour);
    char texte[40];
    std::snprintf(texte, sizeof texte, "%04lld-%02u-%02uT%02lld:%02lld:%02lldZ",
                  static_cast<long long>(annee), mois, jour, static_cast<long long>(reste / 3600),
                  static_cast<long long>(reste / 60 % 60), static_cast<long long>(reste % 60));
    return texte;
}

std::string messageSur(std::string_view message) {
    std::string sur;
    std::size_t i = 0;
    while (i < message.size()) {
        const auto octet = static_cast<unsigned char>(message[i]);
        // A whole UTF-8 sequence is kept as it is; a control or a stray byte is escaped.
        const std::size_t longueur = octet < 0x20 || octet == 0x7F ? 0 : longueurUtf8(message, i);
        const std::size_t place = longueur == 0 ? 4 : longueur;
        if (sur.size() + place > longueurMessageMax) break;
        if (longueur == 0) {
            sur += "\\x";
            sur += "0123456789ABCDEF"[octet >> 4];
            sur += "0123456789ABCDEF"[octet & 0xF];
            ++i;
        } else {
            sur.append(message.substr(i, longueur));
            i += longueur;
        }
    }
    if (i < message.size()) {
        sur += "\u2026 [tronque, " + std::to_string(message.size()) + " octets]";
    }
    return sur;
}

void ecrire(std::string_view message) noexcept {
    try {
        if (cheminJournal().empty()) return;
        std::string ligne = horodatage(std::chrono::system_clock::now());
        ligne += ' ';
        ligne += messageSur(message);
        ligne += '\n';
        // Append mode: every write lands at the current end, even after another program wrote
        // to the file; a missing file is created, an existing one is never truncated. Without
        // O_NONBLOCK, opening a FIFO nobody reads would wait for a reader forever.
        const int fichier =
            ::open(cheminJournal().c_str(),
                   O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0600);
        if (fichier < 0) return;
        struct stat etat {};
        if (::fstat(fichier, &etat) == 0 && S_ISREG(etat.st_mode)) {
            std::size_t ecrit = 0;
            while (ecrit < ligne.size()) {
                const auto n = ::write(fichier, ligne.data() + ecrit, ligne.size() - ecrit);
                if (n < 0 && errno == EINTR) continue;
                if (n <= 0) break;
                ecrit += static_cast<std::size_t>(n);
            }
        }
        ::close(fichier);
    } catch (...) {
        // The log never fails its caller: a line that can't be written is lost.
    }
}

}  // namespace brindex::Journal
