#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

using Ecran = FenetreTest::Ecran;

TEST_F(ControleurTest, DemarrerSansAdresseMontreLaConfigurationQuiStockeEtOuvre) {
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().passagesDevant), std::tuple(Ecran::initial, 0))
        << "built hidden";
    controleur->demarrer();
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().controles.champ,
                       fenetre().controles.focalisations, fenetre().passagesDevant),
              std::tuple(Ecran::configuration, "", 1, 1));
    // The empty field starts the search for a default space; neither answers.
    ASSERT_EQ(p.transport_.requetes.size(), 1u);
    EXPECT_EQ(p.transport_.requetes[0].url, "https://espace.brindex.example/health");
    for (int i = 0; i < 2; ++i) p.transport_.repondre({ErreurTransport{-1003, "x"}, {}, 0, {}});
    // What was kept for another space goes with it; the same space confirmed again keeps it.
    const auto confirmer = [&](const char* adresse, bool garde) {
        p.reglages_.valeurs["zoomEspace"] = "1.25";
        fenetre().controles.champ = adresse;
        fenetre().configuration->valider();
        p.transport_.repondre({{}, EchangeTermine::Reponse::http, 200, R"({"service":"brindex"})"});
        EXPECT_EQ(p.reglages_.valeurs.contains("zoomEspace"), garde) << adresse;
    };
    confirmer("localhost:3000/wiki", false);
    EXPECT_EQ(p.reglages_.valeurs.at("espaceURL"), "http://localhost:3000/wiki");
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    EXPECT_EQ(principale().chargements.at(0).first, "http://localhost:3000/wiki");
    controleur->montrerConfiguration();
    confirmer("localhost:3000/wiki", true);
}

TEST_F(ControleurTest, DemarrerOuvreLEspaceStockeSaufSansOrigineEtLaFenetreSuitLaPage) {
    stocker("ftp://espace.example");
    controleur->demarrer();
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().controles.champ),
              std::tuple(Ecran::configuration, ""));
    controleur->ouvrirEspace(*Url::analyser("ftp://espace.example/"));
    EXPECT_EQ(fenetre().ecran, Ecran::configuration);
    EXPECT_TRUE(p.vues.empty());
    // Loaded as stored, held to the origin the engine reports: its host as the engine writes it.
    p.transport_.requetes.clear();
    stocker("http://0x7f.1:8080/wiki/");
    controleur->demarrer();
    ASSERT_EQ(fenetre().ecran, Ecran::espace);
    auto& vue = principale();
    EXPECT_EQ(vue.chargements,
              (std::vector<std::pair<std::string, double>>{{"http://0x7f.1:8080/wiki/", 60}}));
    EXPECT_EQ(controleur->deciderAction(vue, {"http://127.0.0.1:8080/page"}), Politique::autoriser);
    EXPECT_EQ(controleur->deciderAction(vue, {"http://127.0.0.2:8080/"}), Politique::annuler);
    EXPECT_EQ(fenetre().titre, "Brindex") << "the title waits for the page";
    EXPECT_EQ(p.evenements.back(), "devant");
    EXPECT_TRUE(p.transport_.requetes.empty()) << "a stored address is not probed again";
    // clang-format off
    const std::pair<std::optional<std::string>, std::string> titres[] = {
        {"  Accueil\t", "Accueil"}, {" \t ", "Brindex"}, {std::nullopt, "Brindex"}, {"\n\n", "\n\n"},
        {"\xC2\xA0Wiki\xE2\x80\x83", "Wiki"}};
    // clang-format on
    for (const auto& [page, titre] : titres) {
        vue.titreCourant = page;
        controleur->titreChange(vue);
        EXPECT_EQ(fenetre().titre, titre);
    }
    for (const double progression : {0.999, 1.0}) {
        vue.progressionCourante = progression;
        controleur->progressionChange(vue);
        EXPECT_EQ(std::tie(fenetre().barre, fenetre().barreVisible),
                  std::tuple(progression, progression < 1));
    }
}

TEST_F(ControleurTest, RouvrirLEspaceOuFermerLaFenetreFermeDAbordLesFenetresSecondaires) {
    auto& premiere = espaceCharge();
    popup(premiere);
    p.evenements.clear();
    controleur->ouvrirEspace(*normaliserAdresse("https://espace.example/"));
    EXPECT_EQ(p.evenements,
              (std::vector<std::string>{"fermer Brindex", "vue principale", "ecran espace"}));
    EXPECT_TRUE(controleur->fenetresSecondaires().empty());
    EXPECT_EQ(std::tie(premiere.detachee, premiere.actions),
              std::tuple(true, std::vector<std::string>{"arreter", "terminer"}));
    EXPECT_EQ(controleur->originesWebView().size(), 1u);
    EXPECT_FALSE(controleur->principaleADejaCharge());
    EXPECT_NE(&principale(), &premiere);
    // Closing the main window closes the others.
    auto& seconde = principale();
    popup(seconde);
    fenetre().fermer();
    EXPECT_TRUE(secondaire(1).fermee && seconde.detachee);
    EXPECT_FALSE(controleur->webView());
    EXPECT_TRUE(controleur->originesWebView().empty());
}

TEST_F(ControleurTest, AccueilEtBoutonsDeLErreurSansEffetApresLaFinDuControleur) {
    controleur->montrerErreur("x");
    controleur->accueil();
    fenetre().erreur->reessayer();
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().passagesDevant), std::tuple(Ecran::erreur, 0))
        << "no address: nothing to open";
    stocker("https://espace.example/");
    controleur->accueil();
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().passagesDevant), std::tuple(Ecran::espace, 1));
    controleur->montrerErreur("x");
    fenetre().erreur->changer();
    EXPECT_EQ(fenetre().ecran, Ecran::configuration);
    controleur->montrerErreur("x");
    fenetre().erreur->reessayer();
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    // Once the controller is gone, what it handed out does nothing.
    popup(principale());
    controleur->montrerErreur("x");
    controleur.reset();
    fenetre().erreur->reessayer();
    fenetre().erreur->changer();
    fenetre().fermer();
    secondaire().fermer();
    EXPECT_EQ(fenetre().ecran, Ecran::erreur);
    EXPECT_TRUE(secondaire().fermee);
}

TEST_F(ControleurTest, LesCommandesVisentLaVueDeLaFenetreCleEtLeZoomSansArrondi) {
    controleur->demarrer();
    for (const auto c :
         {Commande::recharger, Commande::rechargerOrigine, Commande::pagePrecedente,
          Commande::pageSuivante, Commande::zoomPlus, Commande::zoomMoins, Commande::zoomReel}) {
        EXPECT_TRUE(controleur->executer(c)) << "without a view, answered and nothing done";
    }
    EXPECT_TRUE(p.vues.empty());
    auto& vue = espaceCharge();
    auto& pop = static_cast<VueWebTest&>(*popup(vue));  // a new secondary window is key
    controleur->executer(Commande::pagePrecedente);
    controleur->executer(Commande::zoomPlus);
    p.rendreCle(&fenetre());
    controleur->executer(Commande::recharger);
    p.rendreCle(nullptr);
    controleur->executer(Commande::rechargerOrigine);
    EXPECT_EQ(pop.actions, std::vector<std::string>{"reculer"});
    EXPECT_EQ(vue.actions, (std::vector<std::string>{"recharger", "rechargerOrigine"}));
    EXPECT_EQ(std::tie(pop.zoom_, vue.zoom_), std::tuple(1.1, 1.0));
    // Home loads the space in the main window, brought to the front, and keeps popups open.
    p.rendreCle(&secondaire());
    controleur->accueil();
    EXPECT_EQ(vue.chargements.back().first, "https://espace.example/wiki");
    EXPECT_TRUE(fenetre().cle);
    EXPECT_EQ(controleur->fenetresSecondaires().size(), 1u);
    // Plain double additions, clamped, never rounded: start (0: where the previous row left
    // it), command, presses, the exact zoom after them.
    constexpr auto plus = Commande::zoomPlus, moins = Commande::zoomMoins;
    // clang-format off
    const std::tuple<double, Commande, int, double> etapes[] = {
        {1.0, plus, 2, 1.2000000000000002}, {1.0, plus, 19, 2.9000000000000017}, {0, plus, 1, 3.0},
        {0, plus, 5, 3.0}, {1.0, moins, 5, 0.5000000000000001}, {0, moins, 4, 0.5}, {2.95, plus, 1, 3.0},
        {0.55, moins, 1, 0.5}, {0, Commande::zoomReel, 1, 1.0}};
    // clang-format on
    for (const auto& [depart, commande, appuis, attendu] : etapes) {
        if (depart != 0) vue.zoom_ = depart;
        for (int i = 0; i < appuis; ++i) controleur->executer(commande);
        EXPECT_EQ(vue.zoom_, attendu) << depart << " " << appuis;
    }
    // The error screen leaves the popups, whose views are then the only ones.
    controleur->montrerErreur("explication");
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().erreur->detail()),
              std::tuple(Ecran::erreur, "explication"));
    EXPECT_FALSE(controleur->webViewActive()) << "no main web view, no key popup";
    EXPECT_EQ(controleur->originesWebView().size(), 1u);
    p.rendreCle(&secondaire());
    EXPECT_EQ(controleur->webViewActive().get(), &pop);
}

TEST_F(ControleurTest, ChangerDEspaceFermeLesFenetresSecondairesSansLeurRappel) {
    auto& vue = espaceCharge();
    for (int i = 0; i < 2; ++i) popup(vue);
    bool rappele = false;
    for (const auto& f : controleur->fenetresSecondaires()) {
        f->onFermeture = [&rappele](FenetreSecondaire&) { rappele = true; };
    }
    controleur->executer(Commande::changerEspace);
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().controles.champ),
              std::tuple(Ecran::configuration, "https://espace.example/wiki"));
    EXPECT_TRUE(p.transport_.requetes.empty()) << "a filled field starts no search";
    // Popups are all closed, without their closing callback.
    EXPECT_FALSE(rappele);
    EXPECT_TRUE(secondaire(0).fermee && secondaire(1).fermee);
    EXPECT_TRUE(controleur->fenetresSecondaires().empty());
    EXPECT_TRUE(controleur->originesWebView().empty());
}

TEST_F(ControleurTest, DialoguesDePageAuxTextesBornesEtChoixDeFichiers) {
    bool alerteFinie = false;
    p.reponsesAlertes.push_back({0, ""});
    controleur->alerteScript("Bonjour", [&] { alerteFinie = true; });
    EXPECT_TRUE(alerteFinie) << "answered once closed";
    std::vector<bool> confirmations;
    p.reponsesAlertes.insert(p.reponsesAlertes.end(), {{0, ""}, {1, ""}, {}});  // {}: no button
    for (int i = 0; i < 3; ++i) {
        controleur->confirmationScript("Sûr ?", [&](bool oui) { confirmations.push_back(oui); });
    }
    EXPECT_EQ(confirmations, (std::vector<bool>{true, false, false}));
    std::vector<std::optional<std::string>> saisies;
    p.reponsesAlertes.insert(p.reponsesAlertes.end(),
                             {{0, ""}, {1, "tapé", true}, {0, "réponse", true}});
    controleur->saisieScript("Nom ?", std::nullopt, [&](auto r) { saisies.push_back(r); });
    EXPECT_EQ(p.alertes.back().champ, "");
    controleur->saisieScript("Nom ?", "Marie", [&](auto r) { saisies.push_back(r); });
    EXPECT_EQ(p.alertes.back().champ, "Marie");
    controleur->saisieScript("Nom ?", "Marie", [&](auto r) { saisies.push_back(r); });
    EXPECT_EQ(saisies, (std::vector<std::optional<std::string>>{"", std::nullopt, "réponse"}));
    // A page's or a server's text is cut to what a dialog can show.
    const std::string mot(70000, 'x');
    controleur->alerteScript(mot + "\n" + std::string(40, '\n') + "fin", [] {});
    EXPECT_EQ(p.alertes.back().informatif, std::string(caracteresDialogueMax, 'x') + "…");
    controleur->alerteScript(std::string(100, 'a') + std::string(40, '\n') + "fin", [] {});
    EXPECT_EQ(p.alertes.back().informatif,
              std::string(100, 'a') + std::string(lignesDialogueMax - 1, '\n') + "…");
    TelechargementTest t;
    controleur->telechargementEchoue(t, mot);
    EXPECT_EQ(p.alertes.back().informatif.size(), caracteresDialogueMax + 3);
    // A prompt's field shows an excerpt; left as it is, the page gets its whole text back.
    std::optional<std::string> saisie;
    p.reponsesAlertes.push_back({0, "coupé par le champ", false});
    controleur->saisieScript("Jeton ?", mot, [&](auto r) { saisie = r; });
    EXPECT_EQ(p.alertes.back().champ->size(), caracteresChampMax + 3);
    EXPECT_EQ(saisie, mot);
    std::vector<FichiersChoisis> reponses;
    p.reponsesFichiers = {std::vector<std::string>{"/a.txt", "/b.txt"}, std::nullopt,
                          std::vector<std::string>{}};
    for (const bool plusieurs : {true, false, false}) {
        controleur->choixFichiers(plusieurs, [&](FichiersChoisis f) { reponses.push_back(f); });
    }
    EXPECT_EQ(reponses, (std::vector<FichiersChoisis>{std::vector<std::string>{"/a.txt", "/b.txt"},
                                                      std::nullopt, std::nullopt}))
        << "never an empty list";
    EXPECT_TRUE(p.demandesFichiers[0].plusieurs && !p.demandesFichiers[1].plusieurs);
}

ErreurChargement url(std::int64_t code) {
    return {"NSURLErrorDomain", code, "description " + std::to_string(code)};
}

const std::string coupee =
    "Votre connexion internet semble coupée. Vérifiez le réseau puis réessayez.";
std::string introuvable(const std::string& hote) {
    return "L'adresse « " + hote +
           " » est introuvable. Vérifiez-la, ou contactez la personne qui administre votre espace.";
}

TEST_F(ControleurTest, AvantLePremierChargementLaFenetreDevientLExplication) {
    // clang-format off
    // The engine's errors, the explanation shown.
    const std::vector<std::pair<std::vector<ErreurChargement>, std::string>> table = {
        {{url(-1200), url(-1201), url(-1202), url(-1204)}, "Le certificat de sécurité du serveur n'est pas valide. Contactez la personne qui administre votre espace."},
        {{url(-1022)}, "Cette adresse exige une connexion sécurisée (https). Vérifiez l'adresse de votre espace."},
        {{url(-1009), url(-1005)}, coupee},
        {{url(-1004), url(-1001)}, "Le serveur de votre espace ne répond pas. Il est peut-être en cours de maintenance — réessayez dans quelques instants."},
        {{url(-1003)}, introuvable("Espace.example")},  // the host as stored
        // Others: the engine's description.
        {{url(-1203)}, "description -1203"}, {{url(-1100)}, "description -1100"},
        {{{"WebKitErrorDomain", 101, "Requête annulée par le moteur"}}, "Requête annulée par le moteur"},
        {{{"GIOErrorDomain", -1003, "autre domaine"}}, "autre domaine"}};
    // clang-format on
    stocker("https://Espace.example:8443/wiki");
    for (const auto& [erreurs, texte] : table) {
        for (const auto& e : erreurs) {
            controleur->demarrer();
            auto& vue = principale();
            controleur->traiterEchec(e, vue);
            ASSERT_EQ(fenetre().ecran, Ecran::erreur) << texte;
            EXPECT_EQ(fenetre().erreur->detail(), texte);
            EXPECT_TRUE(vue.detachee);
            EXPECT_EQ(lignesJournal().back(), "navigation ECHEC " + e.domaine + "/" +
                                                  std::to_string(e.code) + " " + e.description);
        }
    }
}

TEST_F(ControleurTest, EchecsIgnoresSansTraceLesAutresEnFeuilleApresLeChargementPrincipal) {
    stocker("https://espace.example/wiki");
    controleur->demarrer();
    auto& vue = principale();
    auto pop = popup(vue);
    for (VueWeb* v : {static_cast<VueWeb*>(&vue), pop.get()}) {
        controleur->traiterEchec(url(-999), *v);
        controleur->traiterEchec({"WebKitErrorDomain", 102, "interrompu"}, *v);
    }
    EXPECT_TRUE(lignesJournal().empty());
    // A popup's failure is a sheet on its window, even before the main view has loaded.
    controleur->traiterEchec(url(-1004), *pop);
    EXPECT_EQ(std::tuple(fenetre().ecran, secondaire().feuilles.size()),
              std::tuple(Ecran::espace, 1u));
    vue.urlCourante = "https://espace.example/wiki";
    controleur->chargementTermine(vue);
    EXPECT_EQ(lignesJournal().back(), "navigation OK https://espace.example/wiki");
    controleur->chargementTermine(*pop);
    EXPECT_EQ(lignesJournal().back(), "navigation OK ?") << "no URL, still logged";
    // Once the main view has loaded, its failures are sheets too and the page stays; without a
    // stored address no host is named.
    controleur->traiterEchec(url(-1009), vue);
    p.reglages_.valeurs.clear();
    controleur->traiterEchec(url(-1003), vue);
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    ASSERT_EQ(fenetre().feuilles.size(), 2u);
    const auto& f = fenetre().feuilles[0];
    EXPECT_EQ(std::tie(f.message, f.informatif), std::tuple("Page inaccessible", coupee));
    EXPECT_EQ(fenetre().feuilles[1].informatif, introuvable(""));
}

TEST_F(ControleurTest, UnProcessusWebMortRevientUneFoisPuisSExplique) {
    const char* const ici = "https://espace.example/fenetre";
    const std::string deuxFois = "La page de votre espace s'est arrêtée";
    // clang-format off
    // The view whose process ends (the main one, else a popup opened on that address, "": one a
    // script wrote into), whether the engine has a page to reload, whether it ended less than 30 s
    // before; what brings it back (a reload, or an address loaded again), else the start of the
    // explanation (the error view for the main view, a sheet on a popup's window).
    const std::tuple<const char*, bool, bool, std::string, std::string> table[] = {
        {nullptr, true, false, "recharger", ""}, {nullptr, false, false, "https://espace.example/wiki", ""},
        {nullptr, true, true, "", deuxFois}, {ici, true, false, "recharger", ""}, {ici, false, false, ici, ""},
        {ici, false, true, "", deuxFois}, {"", true, false, "recharger", ""},
        {"", false, false, "", "La page de cette fenêtre s'est arrêtée"}};
    // clang-format on
    int ligne = 0;
    for (const auto& [popupSur, page, rechute, retour, explication] : table) {
        SCOPED_TRACE(++ligne);
        p.horloge += delaiRechuteProcessus + std::chrono::seconds(1);
        auto& espace = espaceCharge();
        auto& vue = popupSur ? static_cast<VueWebTest&>(*popup(espace, popupSur)) : espace;
        vue.pageCourante = page;
        if (rechute) controleur->processusTermine(vue, FinProcessus::memoire);
        p.horloge += delaiRechuteProcessus;
        vue.actions.clear();
        vue.chargements.clear();
        controleur->processusTermine(vue, FinProcessus::plantage);
        std::string revenu =
            std::count(vue.actions.begin(), vue.actions.end(), "recharger") ? "recharger" : "";
        for (const auto& [url, delai] : vue.chargements) revenu += url + (delai == 60 ? "" : " ?");
        const auto& feuilles = popupSur ? p.secondaires.back()->feuilles : fenetre().feuilles;
        const std::string explique = fenetre().ecran == Ecran::erreur ? fenetre().erreur->detail()
                                     : feuilles.empty()               ? ""
                                                                      : feuilles.back().informatif;
        EXPECT_EQ(revenu, retour);
        EXPECT_TRUE(explique.starts_with(explication) && explique.empty() == explication.empty())
            << explique;
    }
    EXPECT_EQ(lignesJournal().at(1), "processus web ECHEC plantage https://espace.example/wiki");
    VueWebTest partie(false);  // no longer shown: left alone
    controleur->processusTermine(partie, FinProcessus::plantage);
    EXPECT_TRUE(partie.actions.empty() && partie.chargements.empty());
}

TEST_F(ControleurTest, LesTablesNeGardentRienDUneVueOuDUnTelechargementFini) {
    p.telechargements = dossier.string();
    // How views end, and what each table then holds (origins, secondary windows, process ends,
    // views with navigations waiting, those navigations, downloads, windows that printed, views
    // that asked before being left, questions open, round trips, sign-in questions, HTTP
    // identifications asked): only the views and windows still shown, and the downloads, which
    // outlive any window until they end themselves; whether the main view's engine process is
    // ended with it (never while a popup may share it).
    const std::tuple<std::function<void(VueWeb&)>, const char*, bool> table[] = {
        {[&](VueWeb&) { p.secondaires.back()->fermer(); }, "1 0 1 1 1 2 0 1 0 0 0 1 ", false},
        {[&](VueWeb& popup) { controleur->fermetureDemandee(popup); }, "1 0 1 1 1 2 0 1 0 0 0 1 ",
         false},
        {[&](VueWeb&) { controleur->changerEspace(); }, "0 0 0 0 0 2 0 0 0 0 0 0 ", true},
        {[&](VueWeb&) { controleur->ouvrirEspace(*controleur->adresseEspace()); },
         "1 0 0 0 0 2 0 0 0 0 0 0 ", true},
        {[&](VueWeb&) { controleur->montrerErreur("x"); }, "1 1 1 1 1 2 1 1 0 0 0 1 ", false},
        {[&](VueWeb&) { fenetre().fermer(); }, "0 0 0 0 0 2 0 0 0 0 0 0 ", true},
    };
    for (const auto& [finir, attendu, termine] : table) {
        SCOPED_TRACE(attendu);
        p.horloge += delaiRechuteProcessus;
        // The main view follows the history with a swipe only where one can swipe.
        p.balayage = termine;
        auto& espace = espaceCharge();
        EXPECT_EQ(p.parametresVues.back().gestesHistorique, termine);
        auto& autre = static_cast<VueWebTest&>(*popup(espace, "https://espace.example/f"));
        std::vector<std::shared_ptr<TelechargementTest>> enCours;
        for (VueWebTest* vue : {&espace, &autre}) {
            vue->pageCourante = true;
            controleur->processusTermine(*vue, FinProcessus::plantage);
            controleur->deciderAction(
                *vue, {"https://ailleurs.example/", TypeNavigation::autre, CadreCible::inconnu});
            enCours.push_back(std::make_shared<TelechargementTest>());
            controleur->destinationTelechargement(enCours.back(), "rapport.pdf");
            // The page asks before being left, and the user stays; the server asks who it is.
            controleur->confirmationDepart(*vue, [](bool) {});
            (vue == &espace ? fenetre() : *p.secondaires.back()).reponsesEnAttente.back()({});
            controleur->authentificationDemandee(*vue, {"https", "espace.example", 443, "r"},
                                                 [](auto) {});
        }
        controleur->impressionDemandee(autre);
        finir(autre);
        std::string tailles;
        for (const auto& [nom, taille] : controleur->tailles())
            tailles += std::to_string(taille) + " ";
        EXPECT_EQ(tailles, attendu);
        EXPECT_EQ(std::count(espace.actions.begin(), espace.actions.end(), "terminer"), termine);
        EXPECT_EQ(std::count(autre.actions.begin(), autre.actions.end(), "terminer"), 0);
        controleur->telechargementTermine(*enCours[0]);
        controleur->telechargementEchoue(*enCours[1], "coupure");
        EXPECT_EQ(controleur->telechargementsEnCours(), 0u);
    }
}

}  // namespace
}  // namespace brindex::test
