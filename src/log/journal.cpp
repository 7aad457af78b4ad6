#include "log/journal.hpp"

#include <cstdint>
#include <cstdio>

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

void ecrire(std::string_view message) noexcept {
    try {
        if (cheminJournal().empty()) return;
        std::string ligne = horodatage(std::chrono::system_clock::now());
        ligne += ' ';
        ligne += message;
        ligne += '\n';
        // Append mode: every write lands at the current end, even after another program wrote
        // to the file; a missing file is created, an existing one is never truncated.
        std::FILE* fichier = std::fopen(cheminJournal().c_str(), "ab");
        if (!fichier) return;
        std::fwrite(ligne.data(), 1, ligne.size(), fichier);
        std::fclose(fichier);
    } catch (...) {
        // The log never fails its caller: a line that can't be written is lost.
    }
}

}  // namespace brindex::Journal
