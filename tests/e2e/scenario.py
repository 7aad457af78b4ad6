#!/usr/bin/env python3
"""Runs one end-to-end scenario of the Linux application in a throw-away profile.

The profile has its own HOME and XDG folders, a Downloads folder, and default handlers for
web, mail and folder URIs that only record what they were given (so no browser starts). The
test space runs on a free port (with identity providers on 127.0.0.2 for "connexion" scenarios);
the scenario binary runs under Xvfb with a private session bus, told all in BRINDEX_E2E_* variables.
"""
import os
import random
import shutil
import socket
import subprocess
import sys
import tempfile
import time

ICI = os.path.dirname(os.path.abspath(__file__))
RACINE = os.path.dirname(os.path.dirname(ICI))
SERVEUR = os.path.join(ICI, "espace_hostile.py")


def preparer_profil(profil):
    dossiers = {
        "HOME": os.path.join(profil, "maison"),
        "XDG_CONFIG_HOME": os.path.join(profil, "config"),
        "XDG_DATA_HOME": os.path.join(profil, "donnees"),
        "XDG_STATE_HOME": os.path.join(profil, "etat"),
        "XDG_CACHE_HOME": os.path.join(profil, "cache"),
        "XDG_RUNTIME_DIR": os.path.join(profil, "execution"),
    }
    for chemin in dossiers.values():
        os.makedirs(chemin, mode=0o700, exist_ok=True)
    telechargements = os.path.join(dossiers["HOME"], "Téléchargements")
    os.makedirs(telechargements)
    with open(os.path.join(dossiers["XDG_CONFIG_HOME"], "user-dirs.dirs"), "w") as f:
        f.write('XDG_DOWNLOAD_DIR="%s"\n' % telechargements)

    # Default handlers that record the URI instead of opening it.
    ouverts = os.path.join(profil, "ouverts.txt")
    enregistreur = os.path.join(profil, "enregistrer-uri")
    with open(enregistreur, "w") as f:
        f.write('#!/bin/sh\nprintf "%%s\\n" "$@" >> "%s"\n' % ouverts)
    os.chmod(enregistreur, 0o755)
    applications = os.path.join(dossiers["XDG_DATA_HOME"], "applications")
    os.makedirs(applications)
    types = ["x-scheme-handler/http", "x-scheme-handler/https", "x-scheme-handler/mailto",
             "x-scheme-handler/tel", "x-scheme-handler/msteams", "inode/directory",
             "application/pdf"]
    with open(os.path.join(applications, "enregistreur.desktop"), "w") as f:
        f.write("[Desktop Entry]\nType=Application\nName=Enregistreur\n"
                "Exec=%s %%u\nMimeType=%s;\nNoDisplay=true\n" % (enregistreur, ";".join(types)))
    with open(os.path.join(dossiers["XDG_CONFIG_HOME"], "mimeapps.list"), "w") as f:
        f.write("[Default Applications]\n")
        for t in types:
            f.write("%s=enregistreur.desktop\n" % t)
    return dossiers, telechargements, ouverts


def port_libre(hote="127.0.0.1"):
    return socket.create_server((hote, 0)).getsockname()[1]


def fournisseurs(profil, espace, oidc, saml):  # saml-idp's key and certificate made for the run
    cle, certificat = os.path.join(profil, "idp.key"), os.path.join(profil, "idp.pem")
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=IdP",
                    "-keyout", cle, "-out", certificat], check=True, capture_output=True)
    saml_idp = os.path.join(RACINE, "node_modules", "saml-idp", "bin", "run.js")
    processus = [subprocess.Popen(c, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) for c in (
        ["node", os.path.join(ICI, "fournisseur_oidc.mjs"), str(oidc), espace + "oidc/retour"],
        ["node", saml_idp, "--host", "127.0.0.2", "--port", str(saml), "--cert", certificat,
         "--key", cle, "--acsUrl", espace + "saml/acs", "--audience", espace])]
    for port in (oidc, saml):
        limite = time.time() + 20
        while socket.socket().connect_ex(("127.0.0.2", port)) and time.time() < limite:
            time.sleep(0.1)
    return processus


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: scenario.py <brindex_e2e binary> <scenario>")
    binaire, scenario = sys.argv[1], sys.argv[2]
    profil = tempfile.mkdtemp(prefix="brindex-e2e-")
    serveur, appli, idp = None, None, []
    try:
        dossiers, telechargements, ouverts = preparer_profil(profil)
        journal_serveur = os.path.join(profil, "requetes.jsonl")
        libre = port_libre()
        oidc, saml = port_libre("127.0.0.2"), port_libre("127.0.0.2")
        urls_idp = {"BRINDEX_E2E_" + n: "http://127.0.0.2:%d" % p for n, p in [("OIDC", oidc), ("SAML", saml)]}
        serveur = subprocess.Popen(
            [sys.executable, SERVEUR, "--port", "0", "--journal", journal_serveur, "--lent", "3",
             "--second", str(libre)], stdout=subprocess.PIPE, text=True,
            env=dict(os.environ, **urls_idp))
        # A scenario named after a real wiki gets it, served from a throw-away copy.
        wiki, donnees, adresse = scenario.split("-")[0], os.path.join(profil, "wiki"), ""
        if wiki in ("dokuwiki", "tiddlywiki"):
            appli = subprocess.Popen([sys.executable, os.path.join(RACINE, "scripts", "wiki_reel.py"),
                                      wiki, donnees], stdout=subprocess.PIPE, text=True)
            adresse = "http://127.0.0.1:%s/" % appli.stdout.readline().split()[1]
        premiere = serveur.stdout.readline().split()
        if len(premiere) != 2 or premiere[0] != "PORT":
            sys.exit("the test space did not start")
        if scenario.startswith("connexion"):
            idp = fournisseurs(profil, "http://127.0.0.1:%s/" % premiere[1], oidc, saml)
        env = dict(os.environ)
        env.update(dossiers, **urls_idp)
        env.pop("DISPLAY", None)
        env.pop("WAYLAND_DISPLAY", None)
        env.pop("DBUS_SESSION_BUS_ADDRESS", None)
        env.update({
            "BRINDEX_E2E_ESPACE": "http://127.0.0.1:%s/" % premiere[1],
            "BRINDEX_E2E_PROFIL": profil,
            "BRINDEX_E2E_REQUETES": journal_serveur,
            "BRINDEX_E2E_OUVERTS": ouverts,
            "BRINDEX_E2E_TELECHARGEMENTS": telechargements,
            "BRINDEX_E2E_SERVEUR_PID": str(serveur.pid),
            "BRINDEX_E2E_PORT_LIBRE": str(libre),
            "BRINDEX_E2E_WIKI": adresse,
            "GTK_A11Y": "none",
            "NO_AT_BRIDGE": "1",
            "LANG": "C.UTF-8",
        })
        # Xvfb first, so that what the session bus starts (portals) finds the display; a display
        # number drawn at random, so that runs side by side don't race for the same one.
        commande = ["xvfb-run", "-a", "-n", str(random.randint(100, 30000)), "-s", "-screen 0 1400x1000x24", "dbus-run-session", "--",
                    binaire, scenario]
        debut = time.time()
        resultat = subprocess.run(commande, env=env, timeout=180)
        print("scenario %s: %.1f s" % (scenario, time.time() - debut))
        sys.exit(resultat.returncode)
    finally:
        for p in filter(None, [serveur, appli] + idp):
            p.terminate()
            p.wait()
        if os.environ.get("BRINDEX_E2E_GARDER"):
            print("profile kept in", profil)
        else:
            shutil.rmtree(profil, ignore_errors=True)


if __name__ == "__main__":
    main()
