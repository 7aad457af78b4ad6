#!/usr/bin/env python3
"""The demo space, plus the pages and answers a hostile or careless server gives, for the
end-to-end tests: an "unsaved changes" page, script clicks, popup floods, same-name and
badly named attachments, endless health answers, reason phrases full of control bytes.

    espace_hostile.py [--port N] [--journal FILE] [--lent SECONDES]
"""
import os
import sys
import time
from urllib.parse import parse_qs, quote, urlsplit

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..",
                                "scripts"))
import espace_demo  # noqa: E402
from espace_demo import page, SITE_EXTERNE  # noqa: E402

QUITTER = page("Brouillon", """
<section><h2>Brouillon non enregistré</h2><textarea id="texte">À relire</textarea></section>
<script>addEventListener("beforeunload", e => { e.preventDefault(); e.returnValue = ""; });
</script>""")

CLICS = page("Clics de script", """
<section><a id="a" href="%sa">a</a> <a id="m" href="mailto:x@brindex.example">m</a>
<button id="flot" onclick="for (let i = 0; i < 300; i++) window.open('/fenetre')">Flot</button>
</section>
<script>addEventListener("load", () => {
  for (let i = 0; i < 5; i++) document.getElementById(i == 4 ? "m" : "a").click(); });
</script>""" % SITE_EXTERNE)


class EspaceHostile(espace_demo.Espace):
    def do_GET(self):
        adresse = urlsplit(self.path)
        parametres = {k: v[0] for k, v in parse_qs(adresse.query).items()}
        if adresse.path == "/hostile/quitter":
            self.noter()
            self.repondre(200, QUITTER)
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
    espace_demo.Espace = EspaceHostile
    return espace_demo.main()


if __name__ == "__main__":
    sys.exit(main())
