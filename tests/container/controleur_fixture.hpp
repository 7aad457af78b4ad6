#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "address/normalisation.hpp"
#include "container/controleur.hpp"
#include "container/regles.hpp"
#include "log/journal.hpp"
#include "support/plateforme_test.hpp"

namespace brindex::test {

// A controller on the in-memory platform, with the log in a temporary file.
class ControleurTest : public testing::Test {
  protected:
    void SetUp() override {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        dossier /= std::string("brindex-ctl-") + info->test_suite_name() + "-" + info->name();
        std::filesystem::remove_all(dossier);
        std::filesystem::create_directories(dossier);
        Journal::definirChemin((dossier / "Brindex.log").string());
        // The engine: asks first where the page wants it, reports a close agreed, notes departures.
        p.moteur = [this](VueWebTest& vue, const std::string& acte) {
            const auto suite = [this, &vue, acte](bool quitter) {
                if (quitter) vue.departs.push_back(acte);
                if (quitter && acte == "essayerFermer") controleur->fermetureDemandee(vue);
            };
            vue.confirmation ? controleur->confirmationDepart(vue, suite) : suite(true);
        };
        controleur = Controleur::creer(p);
    }
    void TearDown() override {
        Journal::definirChemin("");
        std::filesystem::remove_all(dossier);
    }

    FenetreTest& fenetre() { return *p.principales.at(0); }
    FenetreTest& secondaire(std::size_t i = 0) { return *p.secondaires.at(i); }
    void stocker(const std::string& texte) { p.reglages_.valeurs["espaceURL"] = texte; }
    VueWebTest& principale() { return static_cast<VueWebTest&>(*controleur->webView()); }
    // Opens the stored space and finishes its first load.
    VueWebTest& espaceCharge(const std::string& adresse = "https://espace.example/wiki") {
        stocker(adresse);
        controleur->demarrer();
        principale().urlCourante = adresse;
        controleur->chargementTermine(principale());
        return principale();
    }
    // A page of `ouvreur` opens a window on `url` when the user clicks.
    std::shared_ptr<VueWeb> popup(VueWeb& ouvreur, std::optional<std::string> url = {}) {
        controleur->activationUtilisateur();
        return controleur->creerVueWebDemandee(ouvreur, url, std::nullopt, configuration);
    }
    // The log's lines, without their time stamps.
    std::vector<std::string> lignesJournal() const {
        std::ifstream f(dossier / "Brindex.log");
        std::vector<std::string> lignes;
        for (std::string l; std::getline(f, l);) lignes.push_back(l.substr(l.find(' ') + 1));
        return lignes;
    }

    std::filesystem::path dossier = std::filesystem::temp_directory_path();
    PlateformeTest p;
    ConfigurationTest configuration;
    std::shared_ptr<Controleur> controleur;
};

}  // namespace brindex::test
