#!/usr/bin/env python3
"""A small demo Brindex space on 127.0.0.1, for newcomers and for the end-to-end tests.

It answers /health as a space does, and serves a few French pages that exercise what the
application does with a page: same-origin links, an external link, a popup, an attachment, a
script that tries to leave for another site, page dialogs and a file field.

    espace_demo.py [--port N] [--journal FILE] [--lent SECONDES]

--port 0 (the default) takes a free port; the first line printed is "PORT <n>".
--journal appends one JSON line per request (method, path, User-Agent, Cookie).
"""
import argparse
import html
import json
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import parse_qs, urlsplit

SITE_EXTERNE = "https://www.brindex.example/"

STYLE = """
body { font: 15px/1.5 system-ui, sans-serif; margin: 0; background: #081119; color: #e7eff4; }
header { background: #0d1a26; border-bottom: 1px solid #1d3140; padding: 18px 32px; }
header h1 { margin: 0; font-size: 22px; font-weight: 600; }
header p { margin: 4px 0 0; color: #8ea2b1; }
main { padding: 24px 32px; max-width: 760px; }
section { background: #0d1a26; border: 1px solid #1d3140; border-radius: 10px;
          padding: 14px 20px; margin-bottom: 16px; }
h2 { font-size: 16px; margin: 0 0 8px; }
a { color: #00b2e9; }
button { font: inherit; background: #00b2e9; color: white; border: 0; border-radius: 6px;
         padding: 6px 14px; margin: 4px 8px 4px 0; cursor: pointer; }
output { color: #8ea2b1; margin-left: 6px; }
nav a { margin-right: 16px; }
"""


def page(titre, corps):
    return ("<!doctype html><html lang=\"fr\"><head><meta charset=\"utf-8\">"
            "<title>%s</title><style>%s</style></head><body>"
            "<header><h1>%s</h1><p>Espace de démonstration Brindex</p></header>"
            "<main><nav><a href=\"/\">Accueil</a><a href=\"/equipe\">L'équipe</a>"
            "<a href=\"/dialogues\">Dialogues</a><a href=\"/envoi\">Envoi de fichiers</a></nav>"
            "%s</main></body></html>") % (html.escape(titre), STYLE, html.escape(titre), corps)


ACCUEIL = page("Accueil", """
<section><h2>Bienvenue</h2>
<p>Cet espace de démonstration joue le rôle du serveur Brindex de votre entreprise : la mémoire
partagée de l'équipe, dans sa propre fenêtre.</p></section>
<section><h2>Liens</h2>
<p><a id="lien-equipe" href="/equipe">La page de l'équipe</a> (même espace)</p>
<p><a id="lien-externe" href="%s">Le site public de Brindex</a> (s'ouvre dans le navigateur)</p>
<p><a id="lien-courriel" href="mailto:equipe@brindex.example">Écrire à l'équipe</a></p>
<p><a id="lien-nouvel-onglet" href="/fenetre" target="_blank">Une page dans une nouvelle fenêtre</a></p>
<p><a id="lien-redirection" href="/redirection">Une page qui tente de partir ailleurs</a></p>
</section>
<section><h2>Fenêtres et fichiers</h2>
<button id="ouvrir-fenetre" onclick="window.open('/fenetre')">Ouvrir une fenêtre</button>
<button id="ouvrir-vierge" onclick="const w = window.open('');
 w.document.write('<title>Note</title><p>Fenêtre écrite par la page.</p>')">Fenêtre vierge</button>
<p><a id="piece-jointe" href="/fichiers/rapport.pdf">Télécharger le rapport (PDF)</a></p>
</section>
""" % SITE_EXTERNE)

EQUIPE = page("L'équipe", """
<section><h2>L'équipe</h2><p>Anne, Bastien, Chloé et Zoé tiennent cet espace à jour.</p>
<p><a href="/">Retour à l'accueil</a></p></section>""")

FENETRE = page("Fenêtre secondaire", """
<section><h2>Fenêtre secondaire</h2><p>Cette page a été ouverte par l'espace.</p>
<button id="fermer" onclick="window.close()">Fermer cette fenêtre</button></section>""")

REDIRECTION = page("Redirection", """
<section><h2>Redirection</h2><p>Cette page essaie d'envoyer la fenêtre vers un autre site
par un script. L'application refuse et le note dans son journal.</p></section>
<script>addEventListener("load", () => setTimeout(() => {
  location.href = "%s"; }, 200));</script>""" % SITE_EXTERNE)

DIALOGUES = page("Dialogues", """
<section><h2>Dialogues de la page</h2>
<button id="alerte" onclick="alert('Bonjour de votre espace !'); noter('alerte', 'vu')">Alerte</button>
<output id="r-alerte"></output><br>
<button id="confirmation" onclick="noter('confirmation', confirm('Continuer ?'))">Confirmation</button>
<output id="r-confirmation"></output><br>
<button id="saisie" onclick="noter('saisie', prompt('Votre nom ?', 'Anne'))">Saisie</button>
<output id="r-saisie"></output></section>
<script>
function noter(type, valeur) {
  document.getElementById("r-" + type).textContent = String(valeur);
  fetch("/resultat?type=" + type + "&valeur=" + encodeURIComponent(String(valeur)));
}
</script>""")

ENVOI = page("Envoi de fichiers", """
<section><h2>Envoi de fichiers</h2>
<input id="fichiers" type="file" multiple onchange="document.getElementById('choisis').textContent =
  Array.from(this.files).map(f => f.name).join(', ') || 'aucun'">
<output id="choisis"></output></section>""")

PDF = (b"%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
       b"2 0 obj<</Type/Pages/Kids[]/Count 0>>endobj\ntrailer<</Root 1 0 R>>\n%%EOF\n")


class Espace(BaseHTTPRequestHandler):
    server_version = "EspaceDemo/1.0"
    journal = None
    lent = 3.0
    verrou = threading.Lock()

    def log_message(self, *args):
        pass

    def noter(self):
        if not Espace.journal:
            return
        ligne = json.dumps({"method": self.command, "path": self.path,
                            "user_agent": self.headers.get("User-Agent"),
                            "cookie": self.headers.get("Cookie")}, ensure_ascii=False)
        with Espace.verrou, open(Espace.journal, "a", encoding="utf-8") as f:
            f.write(ligne + "\n")

    def repondre(self, statut, corps, type_contenu="text/html; charset=utf-8", entetes=()):
        if isinstance(corps, str):
            corps = corps.encode("utf-8")
        self.send_response(statut)
        self.send_header("Content-Type", type_contenu)
        self.send_header("Content-Length", str(len(corps)))
        for nom, valeur in entetes:
            self.send_header(nom, valeur)
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(corps)

    def do_HEAD(self):
        self.do_GET()

    def do_GET(self):
        self.noter()
        chemin = urlsplit(self.path).path
        pages = {"/": ACCUEIL, "/equipe": EQUIPE, "/fenetre": FENETRE,
                 "/redirection": REDIRECTION, "/dialogues": DIALOGUES, "/envoi": ENVOI}
        if chemin == "/health":
            # Compact: a space recognises itself by the exact text "service":"brindex".
            self.repondre(200, json.dumps({"status": "up", "service": "brindex"},
                                          separators=(",", ":")), "application/json")
        elif chemin == "/pas-un-espace/health":
            self.repondre(200, '{"status":"up","service":"autre"}', "application/json")
        elif chemin in pages:
            self.repondre(200, pages[chemin], entetes=[("Set-Cookie", "session=demo; Path=/")])
        elif chemin == "/fichiers/rapport.pdf":
            self.repondre(200, PDF, "application/pdf",
                          [("Content-Disposition", 'attachment; filename="rapport.pdf"')])
        elif chemin == "/resultat":
            self.repondre(204, b"", "text/plain")
        elif chemin == "/lent":
            time.sleep(Espace.lent)
            self.repondre(200, page("Page lente", "<section><p>Enfin là.</p></section>"))
        elif chemin == "/erreur500":
            self.repondre(500, page("Erreur", "<section><p>Le serveur a échoué.</p></section>"))
        else:
            self.repondre(404, page("Introuvable", "<section><p>Cette page n'existe pas.</p>"
                                                   "</section>"))


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("--port", type=int, default=0)
    arguments.add_argument("--journal")
    arguments.add_argument("--lent", type=float, default=3.0)
    options = arguments.parse_args()
    Espace.journal = options.journal
    Espace.lent = options.lent
    serveur = ThreadingHTTPServer(("127.0.0.1", options.port), Espace)
    serveur.daemon_threads = True
    print("PORT", serveur.server_address[1], flush=True)
    try:
        serveur.serve_forever()
    except KeyboardInterrupt:
        pass
    return 0


if __name__ == "__main__":
    sys.exit(main())
