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
    // The empty field starts the search for a default space.
    ASSERT_EQ(p.transport_.requetes.size(), 1u);
    EXPECT_EQ(p.transport_.requetes[0].url, "https://espace.brindex.example/health");
    // Neither default answers; the address the user gives is stored and opened.
    p.transport_.repondreErreur(-1003);
    p.transport_.repondreErreur(-1003);
    fenetre().controles.champ = "localhost:3000/wiki";
    fenetre().configuration->valider();
    p.transport_.repondreEspace();
    EXPECT_EQ(p.reglages_.valeurs.at("espaceURL"), "http://localhost:3000/wiki");
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    EXPECT_EQ(principale().chargements.at(0).first, "http://localhost:3000/wiki");
}

TEST_F(ControleurTest, DemarrerAvecUneAdresseIllisibleMontreLaConfiguration) {
    stocker("ftp://espace.example");
    controleur->demarrer();
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().controles.champ),
              std::tuple(Ecran::configuration, ""));
    EXPECT_FALSE(controleur->webView());
}

TEST_F(ControleurTest, UrlSansOrigineRevientALaConfiguration) {
    controleur->ouvrirEspace(*Url::analyser("ftp://espace.example/"));
    EXPECT_EQ(fenetre().ecran, Ecran::configuration);
    EXPECT_TRUE(p.vues.empty());
}

TEST_F(ControleurTest, DemarrerOuvreLEspaceStockeAvecToutLeChemin) {
    stocker("intranet:8080/wiki/");
    controleur->demarrer();
    ASSERT_EQ(fenetre().ecran, Ecran::espace);
    auto& vue = principale();
    const auto& v = vue.parametres;
    EXPECT_TRUE(v.principale && v.gestesHistorique && v.grossissement);
    EXPECT_EQ(v.agentSuffixe, "Brindex-Desktop/1.0.0");
    EXPECT_EQ(vue.chargements,
              (std::vector<std::pair<std::string, double>>{{"https://intranet:8080/wiki/", 60}}));
    EXPECT_EQ(controleur->originesWebView().at(&vue),
              *Origine::depuis(std::string_view("https://intranet:8080")));
    EXPECT_EQ(fenetre().titre, "Brindex") << "the title waits for the page";
    EXPECT_EQ(p.evenements.back(), "devant");
    EXPECT_TRUE(p.transport_.requetes.empty()) << "a stored address is not probed again";
}

TEST_F(ControleurTest, RouvrirLEspaceFermeLesFenetresSecondairesAvantToutEtGardeUneVue) {
    auto& premiere = espaceCharge();
    popup(premiere);
    p.evenements.clear();
    controleur->ouvrirEspace(*normaliserAdresse("https://espace.example/"));
    EXPECT_EQ(p.evenements,
              (std::vector<std::string>{"fermer Brindex", "vue principale", "ecran espace"}));
    EXPECT_TRUE(controleur->fenetresSecondaires().empty());
    EXPECT_EQ(std::tie(premiere.detachee, premiere.arrets), std::tuple(true, 1));
    EXPECT_EQ(controleur->originesWebView().size(), 1u);
    EXPECT_FALSE(controleur->principaleADejaCharge());
    EXPECT_NE(&principale(), &premiere);
}

TEST_F(ControleurTest, TitreEtProgression) {
    auto& vue = espaceCharge();
    // The page's title, the window's.
    for (const auto& [page, titre] :
         {std::pair<std::optional<std::string>, std::string>{"  Accueil\t", "Accueil"},
          {" \t ", "Brindex"},
          {std::nullopt, "Brindex"},
          {"\n\n", "\n\n"},
          {"\xC2\xA0Wiki\xE2\x80\x83", "Wiki"}}) {
        vue.titreCourant = page;
        controleur->titreChange(vue);
        EXPECT_EQ(fenetre().titre, titre);
    }
    vue.progressionCourante = 0.999;
    controleur->progressionChange(vue);
    EXPECT_EQ(std::tie(fenetre().barre, fenetre().barreVisible), std::tuple(0.999, true));
    vue.progressionCourante = 1.0;
    controleur->progressionChange(vue);
    EXPECT_FALSE(fenetre().barreVisible);
}

TEST_F(ControleurTest, LaVueActiveEstCelleDeLaFenetreCleEtLErreurLaisseLesFenetresSecondaires) {
    controleur->demarrer();
    EXPECT_FALSE(controleur->webViewActive());
    auto& vue = espaceCharge();
    auto pop = popup(vue, "https://espace.example/a");
    EXPECT_EQ(controleur->webViewActive(), pop) << "a new secondary window is key";
    p.rendreCle(&fenetre());
    EXPECT_EQ(controleur->webViewActive().get(), &vue);
    p.rendreCle(nullptr);
    EXPECT_EQ(controleur->webViewActive().get(), &vue);
    controleur->montrerErreur("explication");
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().erreur->detail()),
              std::tuple(Ecran::erreur, "explication"));
    EXPECT_FALSE(controleur->webView());
    EXPECT_FALSE(controleur->webViewActive()) << "no main web view, no key popup";
    EXPECT_EQ(controleur->fenetresSecondaires().size(), 1u);
    EXPECT_EQ(controleur->originesWebView().size(), 1u) << "only the popup's entry is left";
    p.rendreCle(&secondaire());
    EXPECT_EQ(controleur->webViewActive(), pop);
}

TEST_F(ControleurTest, AccueilReessayerEtChangerDAdresseDepuisLErreur) {
    controleur->montrerErreur("x");
    controleur->accueil();
    fenetre().erreur->reessayer();
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().passagesDevant), std::tuple(Ecran::erreur, 0))
        << "no address: nothing to open";
    stocker("https://espace.example/");
    controleur->accueil();
    EXPECT_EQ(std::tie(fenetre().ecran, fenetre().passagesDevant), std::tuple(Ecran::espace, 1));
    controleur->montrerErreur("x");
    fenetre().erreur->reessayer();
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    controleur->montrerErreur("x");
    fenetre().erreur->changer();
    EXPECT_EQ(fenetre().ecran, Ecran::configuration);
}

TEST_F(ControleurTest, RappelsSansEffetApresLaFinDuControleur) {
    auto& vue = espaceCharge();
    popup(vue);
    controleur->montrerErreur("x");
    auto erreur = fenetre().erreur;
    auto principaleFenetre = p.principales.at(0);
    auto secondaireFenetre = p.secondaires.at(0);
    controleur.reset();
    erreur->reessayer();
    erreur->changer();
    principaleFenetre->fermerParUtilisateur();
    secondaireFenetre->fermerParUtilisateur();
    EXPECT_EQ(principaleFenetre->ecran, Ecran::erreur);
    EXPECT_TRUE(secondaireFenetre->fermee);
}

TEST_F(ControleurTest, FermerLaFenetrePrincipale) {
    auto& vue = espaceCharge();
    popup(vue);
    fenetre().fermerParUtilisateur();
    EXPECT_TRUE(secondaire().fermee);
    EXPECT_TRUE(vue.detachee);
    EXPECT_FALSE(controleur->webView());
    EXPECT_TRUE(controleur->originesWebView().empty());
}

// Menu commands, and what a page asks of the platform.

TEST_F(ControleurTest, SansVueLesCommandesDePageNeFontRien) {
    controleur->demarrer();
    for (const auto c :
         {Commande::recharger, Commande::rechargerOrigine, Commande::pagePrecedente,
          Commande::pageSuivante, Commande::zoomPlus, Commande::zoomMoins, Commande::zoomReel}) {
        EXPECT_TRUE(controleur->executer(c));
    }
    EXPECT_TRUE(p.vues.empty());
}

TEST_F(ControleurTest, LesCommandesVisentLaVueActiveLAccueilLaPrincipaleEtLeZoomSansArrondi) {
    auto& vue = espaceCharge();
    controleur->executer(Commande::recharger);
    controleur->executer(Commande::rechargerOrigine);
    auto& vuePopup = static_cast<VueWebTest&>(*popup(vue));
    controleur->executer(Commande::pagePrecedente);
    controleur->executer(Commande::pageSuivante);
    controleur->executer(Commande::zoomPlus);
    EXPECT_EQ(vue.actions, (std::vector<std::string>{"recharger", "rechargerOrigine"}));
    EXPECT_EQ(vuePopup.actions, (std::vector<std::string>{"reculer", "avancer"}));
    EXPECT_DOUBLE_EQ(vuePopup.zoom_, 1.1);
    EXPECT_EQ(vue.zoom_, 1.0);
    // Home loads the space in the main window, brought to the front, and keeps popups open.
    controleur->accueil();
    EXPECT_EQ(vue.chargements.back(),
              (std::pair<std::string, double>{"https://espace.example/wiki", 60}));
    EXPECT_TRUE(fenetre().cle);
    EXPECT_EQ(controleur->fenetresSecondaires().size(), 1u);
    // Zoom: plain double additions, clamped, never rounded. Start (0: where the previous row
    // left it), command, presses, the exact zoom after them.
    constexpr auto plus = Commande::zoomPlus, moins = Commande::zoomMoins;
    const std::tuple<double, Commande, int, double> etapes[] = {
        {1.0, plus, 1, 1.1},
        {0, plus, 1, 1.2000000000000002},
        {1.0, plus, 19, 2.9000000000000017},  // below 3.0 until the 20th press
        {0, plus, 1, 3.0},
        {0, plus, 5, 3.0},
        {1.0, moins, 5, 0.5000000000000001},
        {0, moins, 1, 0.5},
        {0, moins, 4, 0.5},
        {2.95, plus, 1, 3.0},
        {0.55, moins, 1, 0.5},
        {0, Commande::zoomReel, 1, 1.0},
    };
    for (const auto& [depart, commande, appuis, attendu] : etapes) {
        if (depart != 0) vue.zoom_ = depart;
        for (int i = 0; i < appuis; ++i) controleur->executer(commande);
        EXPECT_EQ(vue.zoom_, attendu) << depart << " " << appuis;
    }
}

TEST_F(ControleurTest, SiteJournalEtChangementDEspace) {
    auto& vue = espaceCharge();
    popup(vue);
    popup(vue);
    bool rappele = false;
    for (const auto& f : controleur->fenetresSecondaires()) {
        f->onFermeture = [&rappele](FenetreSecondaire&) { rappele = true; };
    }
    controleur->executer(Commande::ouvrirSite);
    EXPECT_EQ(p.urlsOuvertes, std::vector<std::string>{std::string(Marque::urlSite)});
    EXPECT_EQ(Marque::urlSite.substr(0, 8), "https://");
    controleur->executer(Commande::ouvrirJournal);
    EXPECT_EQ(p.reveles, std::vector<std::string>{Journal::chemin()});
    controleur->executer(Commande::changerEspace);
    EXPECT_EQ(fenetre().ecran, FenetreTest::Ecran::configuration);
    EXPECT_EQ(fenetre().controles.champ, "https://espace.example/wiki");
    EXPECT_TRUE(p.transport_.requetes.empty()) << "a filled field starts no search";
    // Popups are all closed, without their closing callback.
    EXPECT_FALSE(rappele);
    EXPECT_TRUE(secondaire(0).fermee && secondaire(1).fermee);
    EXPECT_TRUE(controleur->fenetresSecondaires().empty());
    EXPECT_TRUE(controleur->originesWebView().empty());
    EXPECT_FALSE(controleur->executer(Commande::pleinEcran));
    EXPECT_FALSE(controleur->executer(Commande::quitter));
}

TEST_F(ControleurTest, DialoguesDePageAuxTextesBornesEtChoixDeFichiers) {
    // Alert: answered once closed.
    bool alerteFinie = false;
    p.reponsesAlertes.push_back({0, ""});
    controleur->alerteScript("Bonjour", [&] { alerteFinie = true; });
    EXPECT_TRUE(alerteFinie);
    EXPECT_EQ(p.alertes.back().message, "Brindex");
    EXPECT_EQ(p.alertes.back().informatif, "Bonjour");
    EXPECT_EQ(p.alertes.back().boutons, std::vector<std::string>{"OK"});

    std::vector<bool> confirmations;
    p.reponsesAlertes.insert(p.reponsesAlertes.end(), {{0, ""}, {1, ""}, {}});  // {}: no button
    for (int i = 0; i < 3; ++i) {
        controleur->confirmationScript("Sûr ?", [&](bool oui) { confirmations.push_back(oui); });
    }
    EXPECT_EQ(confirmations, (std::vector<bool>{true, false, false}));
    EXPECT_EQ(p.alertes.back().boutons, (std::vector<std::string>{"OK", "Annuler"}));

    std::vector<std::optional<std::string>> saisies;
    p.reponsesAlertes.insert(p.reponsesAlertes.end(),
                             {{0, ""}, {1, "tapé", true}, {0, "réponse", true}});
    controleur->saisieScript("Nom ?", std::nullopt, [&](auto r) { saisies.push_back(r); });
    EXPECT_EQ(p.alertes.back().champ, "");
    controleur->saisieScript("Nom ?", "Marie", [&](auto r) { saisies.push_back(r); });
    EXPECT_EQ(p.alertes.back().champ, "Marie");
    EXPECT_EQ(p.alertes.back().largeurChamp, 260);
    EXPECT_EQ(p.alertes.back().hauteurChamp, 24);
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
    // File choice: never an empty list.
    std::vector<FichiersChoisis> reponses;
    p.reponsesFichiers = {std::vector<std::string>{"/a.txt", "/b.txt"}, std::nullopt,
                          std::vector<std::string>{}};
    for (const bool plusieurs : {true, false, false}) {
        controleur->choixFichiers(plusieurs, [&](FichiersChoisis f) { reponses.push_back(f); });
    }
    EXPECT_EQ(reponses, (std::vector<FichiersChoisis>{std::vector<std::string>{"/a.txt", "/b.txt"},
                                                      std::nullopt, std::nullopt}))
        << "never an empty list";
    const auto& d = p.demandesFichiers;
    EXPECT_TRUE(d[0].fichiers && !d[0].dossiers && d[0].plusieurs && !d[0].creerDossiers);
    EXPECT_FALSE(d[1].plusieurs);
}

// Failures of loads and of the web process.

ErreurChargement url(std::int64_t code) {
    return {"NSURLErrorDomain", code, "description " + std::to_string(code)};
}

const std::string certificat =
    "Le certificat de sécurité du serveur n'est pas valide. Contactez la personne qui administre "
    "votre espace.";
const std::string coupee =
    "Votre connexion internet semble coupée. Vérifiez le réseau puis réessayez.";
const std::string silence =
    "Le serveur de votre espace ne répond pas. Il est peut-être en cours de maintenance — "
    "réessayez dans quelques instants.";
std::string introuvable(const std::string& hote) {
    return "L'adresse « " + hote +
           " » est introuvable. Vérifiez-la, ou contactez la personne qui administre votre espace.";
}

// The engine's error, the explanation shown.
using CasDetail = std::pair<ErreurChargement, std::string>;

class Explications : public ControleurTest, public testing::WithParamInterface<CasDetail> {};

TEST_P(Explications, AvantLePremierChargementLaFenetreDevientLErreur) {
    const auto& [e, texte] = GetParam();
    stocker("https://Espace.example:8443/wiki");
    controleur->demarrer();
    auto& vue = principale();
    controleur->traiterEchec(e, vue);
    ASSERT_EQ(fenetre().ecran, Ecran::erreur);
    EXPECT_EQ(fenetre().erreur->detail(), texte);
    EXPECT_TRUE(vue.detachee);
    EXPECT_EQ(lignesJournal().back(),
              "navigation ECHEC " + e.domaine + "/" + std::to_string(e.code) + " " + e.description);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Table, Explications, testing::Values(
    CasDetail{url(-1200), certificat}, CasDetail{url(-1201), certificat}, CasDetail{url(-1202), certificat}, CasDetail{url(-1204), certificat},
    CasDetail{url(-1022), "Cette adresse exige une connexion sécurisée (https). Vérifiez l'adresse de votre espace."},
    CasDetail{url(-1009), coupee}, CasDetail{url(-1005), coupee},
    CasDetail{url(-1004), silence}, CasDetail{url(-1001), silence},
    CasDetail{url(-1003), introuvable("Espace.example")},  // the host as stored
    // Others: the engine's description.
    CasDetail{url(-1203), "description -1203"}, CasDetail{url(-1100), "description -1100"},
    CasDetail{{"WebKitErrorDomain", 101, "Requête annulée par le moteur"}, "Requête annulée par le moteur"},
    CasDetail{{"GIOErrorDomain", -1003, "autre domaine"}, "autre domaine"}));
// clang-format on

TEST_F(ControleurTest, EchecsIgnoresSansTracePuisApresUnChargementUneFeuille) {
    auto& vue = espaceCharge();
    EXPECT_EQ(lignesJournal().back(), "navigation OK https://espace.example/wiki");
    auto pop = popup(vue);
    const auto avant = lignesJournal().size();
    for (VueWeb* v : {static_cast<VueWeb*>(&vue), pop.get()}) {
        controleur->traiterEchec(url(-999), *v);
        controleur->traiterEchec({"WebKitErrorDomain", 102, "interrompu"}, *v);
    }
    EXPECT_EQ(lignesJournal().size(), avant);
    EXPECT_TRUE(fenetre().feuilles.empty());
    EXPECT_TRUE(secondaire().feuilles.empty());
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    // A load that ends without a URL is still logged.
    controleur->chargementTermine(*pop);
    EXPECT_EQ(lignesJournal().back(), "navigation OK ?");
    // Once the main view has loaded, a failure shows in a sheet and the page stays.
    controleur->traiterEchec(url(-1009), vue);
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    ASSERT_EQ(fenetre().feuilles.size(), 1u);
    const auto& f = fenetre().feuilles[0];
    EXPECT_EQ(std::tie(f.message, f.informatif, f.boutons),
              std::tuple("Page inaccessible", coupee, std::vector<std::string>{"OK"}));
}

TEST_F(ControleurTest, EchecDansUneFenetreSecondaireToujoursEnFeuilleEtIntrouvableSansAdresse) {
    stocker("https://espace.example/");
    controleur->demarrer();
    auto pop = popup(principale());
    controleur->traiterEchec(url(-1004), *pop);
    EXPECT_EQ(fenetre().ecran, Ecran::espace) << "the main view had not loaded, yet stays";
    ASSERT_EQ(secondaire().feuilles.size(), 1u);
    // The address is no longer stored when the main view fails: none is named.
    p.reglages_.valeurs.clear();
    controleur->traiterEchec(url(-1003), principale());
    EXPECT_EQ(fenetre().erreur->detail(), introuvable(""));
    controleur->traiterEchec(url(-1001), *pop);
    EXPECT_EQ(secondaire().feuilles.size(), 2u);
}

TEST_F(ControleurTest, UnProcessusWebMortRechargeUneFoisPuisExplique) {
    auto& vue = espaceCharge();
    auto& pop = static_cast<VueWebTest&>(*popup(vue));
    controleur->processusTermine(vue, FinProcessus::plantage);
    EXPECT_EQ(vue.actions, std::vector<std::string>{"recharger"});
    EXPECT_EQ(lignesJournal().back(), "processus web ECHEC plantage https://espace.example/wiki");
    p.horloge += delaiRechuteProcessus + std::chrono::seconds(1);
    controleur->processusTermine(vue, FinProcessus::memoire);
    EXPECT_EQ(vue.actions.size(), 2u) << "long after the last one: reloaded again";
    EXPECT_EQ(fenetre().ecran, Ecran::espace);
    p.horloge += std::chrono::seconds(5);
    controleur->processusTermine(vue, FinProcessus::plantage);
    EXPECT_EQ(fenetre().ecran, Ecran::erreur);
    EXPECT_EQ(fenetre().erreur->detail().rfind("La page de votre espace s'est arrêtée", 0), 0u);
    // A popup's page dies twice: its window says so and stays.
    controleur->processusTermine(pop, FinProcessus::plantage);
    controleur->processusTermine(pop, FinProcessus::plantage);
    EXPECT_EQ(pop.actions, std::vector<std::string>{"recharger"});
    ASSERT_EQ(secondaire().feuilles.size(), 1u);
    EXPECT_EQ(secondaire().feuilles[0].message, "Page inaccessible");
}

}  // namespace
}  // namespace brindex::test
