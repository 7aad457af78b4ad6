#!/usr/bin/env python3
"""The demo space, plus the pages and answers a hostile or careless server gives, for the
end-to-end tests: an "unsaved changes" page, script clicks, popup floods, same-name and
badly named attachments, endless health answers, reason phrases full of control bytes.

    espace_hostile.py [--port N] [--journal FILE] [--lent SECONDES]
"""
import os
import signal
import sys
import threading
import time
from urllib.parse import parse_qs, quote, urlsplit

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..",
                                "scripts"))
import espace_demo  # noqa: E402
from espace_demo import page, SITE_EXTERNE  # noqa: E402

QUITTER = page("Brouillon", """
<section><h2>Brouillon non enregistré</h2><textarea id="texte">À relire</textarea>
<button id="fenetre" onclick="window.open('/hostile/quitter')">Fenêtre</button></section>
<script>addEventListener("beforeunload", e => { e.preventDefault(); e.returnValue = ""; });
</script>""")

# Files the page makes: saved on the user's click, never shown, never saved by a script alone.
EXPORT = page("Export", """<button id="blob">Exporter</button> <button id="data">Tableau</button>
<a id="voir">Voir</a><script>const f = URL.createObjectURL(new Blob(["Exporté par la page\\n"]));
function lien(href, nom) { const a = document.body.appendChild(document.createElement("a"));
  a.href = href; a.download = nom; a.click(); a.remove(); }
blob.onclick = () => lien(f, "export.txt"); voir.href = f; onload = () => lien(f, "auto.txt");
data.onclick = () => lien("data:text/csv,a;b", "tableau.csv");</script>""")
# A page of the knowledge base as staff use it: a word to find, print buttons (one that prints in
# a loop), a meeting link and a French text field.
BUREAU = page("Compte rendu", """
<section><p id="m1">Une brindille au départ.</p><p id="m2">Puis une Brindille encore.</p>
<p id="m3">Enfin la BRINDILLE.</p>
<button id="imprimer" onclick="print()">Imprimer</button>
<button id="boucle" onclick="for (let i = 0; i < 200; i++) print()">Imprimer sans fin</button>
<button id="fenetre" onclick="window.open('/hostile/bureau')">Autre fenêtre</button>
<p><a id="reunion" href="msteams:/l/meetup-join/19%3Areunion">Rejoindre la réunion</a></p>
<textarea id="note" lang="fr" rows="2" cols="30"
 style="background:#fff;color:#000;font:24px serif;border:0"></textarea></section>
<script>window.touches = ""; addEventListener("keydown", e => { window.touches += e.key; });
</script>""")

CLICS = page("Clics de script", """
<section><a id="a" href="%sa">a</a> <a id="m" href="mailto:x@brindex.example">m</a>
<button id="flot" onclick="for (let i = 0; i < 300; i++) window.open('/fenetre')">Flot</button>
<a id="dl" href="/equipe" download="equipe.html">Télécharger la page</a>
</section>
<script>addEventListener("load", () => {
  for (let i = 0; i < 5; i++) document.getElementById(i == 4 ? "m" : "a").click(); });
</script>""" % SITE_EXTERNE)


# A page of the space embedding a page of another site (the same server named "localhost"),
# whose links navigate inside the frame, then out of it to the top.
CADRES = page("Cadres", """
<section><iframe id="cadre" src="http://localhost:%s/hostile/cadre" width="400" height="200">
</iframe></section><script>window.vus = [];
addEventListener("message", e => window.vus.push(e.data));</script>""")

CADRE = """<!doctype html><html><body style="margin:0"><a id="lien" %s
 style="display:block;width:100%%;height:100vh">suite</a>
<script>parent.postMessage(location.href, "*");</script></body></html>"""


class EspaceHostile(espace_demo.Espace):
    def do_GET(self):
        adresse = urlsplit(self.path)
        parametres = {k: v[0] for k, v in parse_qs(adresse.query).items()}
        if adresse.path in ("/hostile/quitter", "/hostile/export"):
            # The draft sets a cookie for a year, beside the pages' session cookie.
            self.noter()
            brouillon = "quitter" in adresse.path
            self.repondre(200, QUITTER if brouillon else EXPORT, entetes=[
                ("Set-Cookie", "garde=1; Max-Age=31536000; Path=/")] if brouillon else [])
        elif adresse.path == "/hostile/cadres":
            self.noter()
            self.repondre(200, CADRES % self.server.server_address[1])
        elif adresse.path == "/hostile/cadre":
            self.noter()
            # The first page's link stays in the frame, the second's aims at the whole window.
            lien = ('href="/hostile/haut" target="_top"' if "n" in parametres
                    else 'href="/hostile/cadre?n=2"')
            self.repondre(200, CADRE % lien)
        elif adresse.path == "/hostile/bureau":
            self.noter()
            self.repondre(200, BUREAU)
        elif adresse.path == "/hostile/clics":
            self.noter()
            self.repondre(200, CLICS)
        elif adresse.path == "/hostile/note":
            # An attachment whose body comes late, so that several are under way at once.
            self.noter()
            nom = parametres.get("nom", "note.txt")
            corps = ("note %s\n" % parametres.get("i", "")).encode()
            self.send_response(200)
            self.send_header("Content-Type", "text/plain")
            self.send_header("Content-Length", str(len(corps)))
            self.send_header("Content-Disposition", "attachment; filename*=UTF-8''" + quote(nom))
            self.end_headers()
            self.wfile.flush()
            time.sleep(float(parametres.get("lent", "0")))
            self.wfile.write(corps)
        elif adresse.path == "/hostile/echec":
            # A failure whose reason phrase is as long and as raw as the server likes.
            self.noter()
            raison = "Erreur \x1b[31m\x07" + "x" * int(parametres.get("long", "10"))
            self.send_response_only(500, raison)
            self.send_header("Content-Length", "0")
            self.end_headers()
        else:
            super().do_GET()


def main():
    # --second PORT: the same space also listens on PORT from SIGUSR1 to SIGUSR2, for a space
    # that comes up while the application waits for it.
    if "--second" in sys.argv:
        i = sys.argv.index("--second")
        port = int(sys.argv[i + 1])
        del sys.argv[i:i + 2]
        second = []

        def ouvrir(*_):
            second.append(espace_demo.ThreadingHTTPServer(("127.0.0.1", port), EspaceHostile))
            threading.Thread(target=second[-1].serve_forever, args=(0.05,), daemon=True).start()

        def fermer(*_):
            serveur = second.pop()
            serveur.shutdown()
            serveur.server_close()

        signal.signal(signal.SIGUSR1, ouvrir)
        signal.signal(signal.SIGUSR2, fermer)
    espace_demo.Espace = EspaceHostile
    return espace_demo.main()


if __name__ == "__main__":
    sys.exit(main())
