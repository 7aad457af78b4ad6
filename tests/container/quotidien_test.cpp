#include "container/controleur_fixture.hpp"

namespace brindex::test {
namespace {

using Quotidien = ControleurTest;

TEST_F(Quotidien, UnDialogueDImpressionParFenetreEtLesPagesSeulesUneFoisParMinute) {
    auto& vue = espaceCharge();
    auto& popupVue = static_cast<VueWebTest&>(*popup(vue));
    p.rendreCle(&fenetre());
    enum Qui { page, menu, clicPuisPage };
    // clang-format off
    // Seconds later, which window's page, who asks, then: dialogs of the main window and of
    // the popup shown so far, whether the main one's dialog closes after, log lines so far.
    const std::tuple<int, bool, Qui, std::size_t, std::size_t, bool, std::size_t> table[] = {
        {0, false, page, 1, 0, false, 0}, {1, false, menu, 1, 0, false, 0},  // open: nothing more
        {1, true, page, 1, 1, false, 0}, {2, false, page, 1, 1, true, 0},     // each window its own
        {10, false, page, 1, 1, false, 1}, {11, false, page, 1, 1, false, 1},  // refused, logged once
        {12, false, clicPuisPage, 2, 1, true, 1}, {13, false, menu, 3, 1, true, 1},
        {61, false, page, 4, 1, true, 1}};                                     // a minute on
    // clang-format on
    const auto debut = p.horloge;
    for (const auto& [secondes, dansPopup, qui, principaux, secondaires, ferme, lignes] : table) {
        p.horloge = debut + std::chrono::seconds(secondes);
        if (qui == clicPuisPage) controleur->activationUtilisateur();
        if (qui == menu) {
            controleur->imprimer();
        } else {
            for (int i = 0; i < 100; ++i)
                controleur->impressionDemandee(dansPopup ? popupVue : vue);
        }
        EXPECT_EQ(std::pair(vue.impressions.size(), popupVue.impressions.size()),
                  std::pair(principaux, secondaires))
            << secondes;
        EXPECT_EQ(lignesJournal().size() - 1, lignes) << secondes;
        if (ferme) vue.impressions.back()();
    }
    EXPECT_EQ(lignesJournal().back(), "impression REFUSEE sans action de l'utilisateur");
}

TEST_F(Quotidien, LeZoomDeLaPageEstGardePourLEspaceEtUnZoomStockeAbsurdeIgnore) {
    // clang-format off
    const std::pair<const char*, double> table[] = {
        {"130", 1.3}, {"50", 0.5}, {"300", 3.0}, {"49", 1.0}, {"301", 1.0}, {"-100", 1.0}, {"", 1.0},
        {"abc", 1.0}, {"1.25", 1.0}, {"125%", 1.0}, {"99999999999999999999", 1.0}, {"nan", 1.0}};
    // clang-format on
    for (const auto& [stocke, zoom] : table) {
        p.reglages_.valeurs["zoomEspace"] = stocke;
        stocker("https://espace.example/");
        controleur->demarrer();
        EXPECT_DOUBLE_EQ(principale().zoom(), zoom) << stocke;
    }
    controleur->zoomPlus();
    EXPECT_EQ(p.reglages_.valeurs.at("zoomEspace"), "110");
    // A popup starts at the main page's zoom; its own zoom is its own.
    auto& autre = static_cast<VueWebTest&>(*popup(principale()));
    EXPECT_DOUBLE_EQ(autre.zoom(), 1.1);
    p.rendreCle(&secondaire(p.secondaires.size() - 1));
    controleur->zoomPlus();
    EXPECT_EQ(p.reglages_.valeurs.at("zoomEspace"), "110");
}

struct BarreTest : ControlesRecherche {
    void montrer(bool v) override { visible = v; }
    void focaliserChamp() override { ++focalisations; }
    std::string texteChamp() const override { return champ; }
    void statut(const std::string& t, bool) override { texte = t; }
    bool visible = false;
    int focalisations = 0;
    std::string champ, texte;
};

TEST_F(Quotidien, LaBarreDeRecherchePasseDUnResultatALAutreEtSeFermeAvecSaPage) {
    auto& vue = espaceCharge("https://espace.example/wiki");
    BarreTest barre;
    controleur->recherche().attacher(&barre);
    controleur->rechercher();
    EXPECT_TRUE(barre.visible && barre.focalisations == 1);
    using S = SensRecherche;
    enum Geste { taper, suivant, precedent };
    const auto aucun = std::optional<unsigned>();
    // clang-format off
    // What the user does (with the field's text), the search the page gets, the engine's answer
    // (found, count), what the bar says.
    const std::tuple<Geste, const char*, S, bool, std::optional<unsigned>, const char*> table[] = {
        {taper, "brindille", S::nouvelle, true, 3u, "1 sur 3"}, {suivant, "brindille", S::suivante, true, 1u, "2 sur 3"},
        {suivant, "brindille", S::suivante, true, 1u, "3 sur 3"}, {suivant, "brindille", S::suivante, true, 1u, "1 sur 3"},
        {precedent, "brindille", S::precedente, true, 1u, "3 sur 3"},
        {suivant, "brindilles", S::nouvelle, false, aucun, "Aucun résultat"},  // typed faster than reported
        {suivant, "brindilles", S::nouvelle, false, aucun, "Aucun résultat"},
        {taper, "e", S::nouvelle, true, 4294967295u, "Plus de 1000 résultats"}, {taper, "f", S::nouvelle, true, aucun, ""}};
    // clang-format on
    for (const auto& [geste, champ, sens, trouve, nombre, statut] : table) {
        barre.champ = champ;
        if (geste == taper) controleur->recherche().texteChange(champ);
        if (geste == suivant) controleur->rechercherSuivant();
        if (geste == precedent) controleur->rechercherPrecedent();
        ASSERT_FALSE(vue.recherches.empty());
        EXPECT_EQ(vue.recherches.back(), std::pair(std::string(champ), sens)) << statut;
        controleur->resultatRecherche(vue, trouve, nombre);
        EXPECT_EQ(barre.texte, statut);
    }
    // Escape gives the page the keyboard back; a page of another site closes the bar.
    vue.actions.clear();
    controleur->recherche().fermer();
    EXPECT_EQ(vue.actions, (std::vector<std::string>{"finirRecherche", "focaliser"}));
    EXPECT_FALSE(barre.visible);
    controleur->rechercher();
    const auto recherches = vue.recherches.size();
    vue.urlCourante = "https://espace.example/autre";
    controleur->chargementTermine(vue);
    EXPECT_TRUE(barre.visible);
    EXPECT_EQ(vue.recherches.size(), recherches + 1) << "the new page searched";
    vue.urlCourante = "https://ailleurs.example/";
    controleur->chargementTermine(vue);
    EXPECT_FALSE(barre.visible);
    controleur->rechercher();
    controleur->changerEspace();
    EXPECT_FALSE(barre.visible) << "the page gone";
    controleur->recherche().attacher(nullptr);
}

TEST(Orthographe, LesLanguesDeLaLocalePuisLeFrancaisEtLAnglais) {
    using L = std::vector<std::string>;
    // clang-format off
    const std::pair<L, L> table[] = {
        {{"C.UTF-8", "C"}, {"fr_FR", "en_US"}},
        {{"fr_CA.UTF-8", "fr_CA", "fr.UTF-8", "fr", "C"}, {"fr_CA", "en_US"}},
        {{"de_DE.UTF-8@euro", "de_DE", "de", "POSIX"}, {"de_DE", "fr_FR", "en_US"}},
        {{"en_GB", "en", "pt_BR", "pt"}, {"en_GB", "pt_BR", "fr_FR"}}};
    // clang-format on
    for (const auto& [locale, langues] : table) EXPECT_EQ(languesOrthographe(locale), langues);
}

}  // namespace
}  // namespace brindex::test
