#!/usr/bin/env python3
"""The demo space, plus the pages and answers a hostile or careless server gives, for the
end-to-end tests: an "unsaved changes" page, script clicks, popup floods, same-name and
badly named attachments, endless health answers, reason phrases full of control bytes; sign-ins
through the providers at $BRINDEX_E2E_OIDC (PKCE) and $BRINDEX_E2E_SAML, Basic (anne/secret).

    espace_hostile.py [--port N] [--journal FILE] [--lent SECONDES]
"""
import base64, hashlib, json, os, secrets, signal, sys, threading, time, urllib.request, zlib
from urllib.parse import parse_qs, quote, urlencode, urlsplit

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


OIDC, SAML, VERIFICATEURS = os.environ.get("BRINDEX_E2E_OIDC"), os.environ.get("BRINDEX_E2E_SAML"), {}
CONNECTE = page("Connectée", "<section><p id='connecte'>Vous êtes connectée.</p></section>")
FENETRE_CONNEXION = page("Connexion par fenêtre", """<button id="connexion" onclick="window.open('%s')">
Se connecter</button><output id="etat"></output><script>addEventListener("message", async e => etat
.textContent = (await fetch("/oidc/echange?" + new URLSearchParams(e.data.response))).ok ? "connectée" : "");
</script>""")


class EspaceHostile(espace_demo.Espace):
    def racine(self):
        return "http://127.0.0.1:%d" % self.server.server_address[1]

    def autorisation(self, **plus):
        etat, verificateur = secrets.token_urlsafe(12), secrets.token_urlsafe(48)
        VERIFICATEURS[etat] = verificateur
        defi = base64.urlsafe_b64encode(hashlib.sha256(verificateur.encode()).digest())
        return OIDC + "/auth?" + urlencode(dict(
            client_id="brindex", response_type="code", scope="openid", state=etat,
            redirect_uri=self.racine() + "/oidc/retour", code_challenge=defi,
            code_challenge_method="S256", **plus)).replace("%3D", "")

    def echange(self, p):
        corps = urlencode(dict(grant_type="authorization_code", code=p.get("code", ""),
                               redirect_uri=self.racine() + "/oidc/retour", client_id="brindex",
                               code_verifier=VERIFICATEURS.pop(p.get("state"), ""))).encode()
        try:  # straight to the provider, whatever the environment's proxy
            return "id_token" in json.load(urllib.request.build_opener(urllib.request.ProxyHandler(
                {})).open(OIDC + "/token", corps, timeout=5))
        except OSError:
            return False

    def connexion(self, ok, cookie, suite):
        self.repondre(303 if ok else 403, CONNECTE, entetes=[("Location", suite)] + (
            [("Set-Cookie", cookie + "=1; Path=/")] if ok else []))

    def demande_saml(self):
        xml = ('<samlp:AuthnRequest xmlns:samlp="urn:oasis:names:tc:SAML:2.0:protocol" ID="_%s" '
               'Version="2.0" AssertionConsumerServiceURL="%s/saml/acs"><saml:Issuer xmlns:saml='
               '"urn:oasis:names:tc:SAML:2.0:assertion">%s/</saml:Issuer></samlp:AuthnRequest>'
               ) % (secrets.token_hex(8), self.racine(), self.racine())
        deflate = zlib.compressobj(wbits=-15)
        requete = base64.b64encode(deflate.compress(xml.encode()) + deflate.flush())
        return SAML + "/saml/sso?" + urlencode({"SAMLRequest": requete, "RelayState": "/saml/"})

    def do_POST(self):
        corps = self.rfile.read(min(int(self.headers.get("Content-Length", 0)), 1 << 20))
        reponse = parse_qs(corps.decode()).get("SAMLResponse", [""])[0]
        self.connexion(self.path == "/saml/acs" and b"status:Success" in base64.b64decode(
            reponse + "=="), "saml", "/saml/")

    def do_GET(self):
        adresse = urlsplit(self.path)
        parametres = {k: v[0] for k, v in parse_qs(adresse.query).items()}
        cookies = self.headers.get("Cookie") or ""
        protegees = {"/oidc/": ("oidc=1", self.autorisation), "/saml/": ("saml=1", self.demande_saml)}
        if adresse.path in protegees:
            self.noter()
            cookie, destination = protegees[adresse.path]
            ok = cookie in cookies
            self.repondre(200 if ok else 302, CONNECTE, entetes=[] if ok else [
                ("Location", destination())])
        elif adresse.path in ("/oidc/retour", "/oidc/echange"):
            self.noter()
            self.connexion(self.echange(parametres), "oidc", "/oidc/")
        elif adresse.path == "/oidc/fenetre":
            self.repondre(200, FENETRE_CONNEXION % self.autorisation(response_mode="web_message"))
        elif adresse.path == "/basic/":
            self.noter()
            ok = self.headers.get("Authorization") == "Basic YW5uZTpzZWNyZXQ="  # anne:secret
            self.repondre(200 if ok else 401, CONNECTE if ok else page("Refusé", ""), entetes=[]
                          if ok else [("WWW-Authenticate", 'Basic realm="Espace Brindex"')])
        elif adresse.path in ("/hostile/quitter", "/hostile/export"):
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
