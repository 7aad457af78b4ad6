#!/usr/bin/env python3
"""Runs one end-to-end scenario of the Linux application in a throw-away profile.

The profile has its own HOME and XDG folders, a Downloads folder, and default handlers for
web, mail and folder URIs that only record what they were given (so no browser starts). The
test space is started on a free port; the scenario binary then runs under Xvfb with a private
session bus, and finds everything it needs in BRINDEX_E2E_* variables.
"""
import hashlib
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
             "x-scheme-handler/tel", "inode/directory", "application/pdf"]
    with open(os.path.join(applications, "enregistreur.desktop"), "w") as f:
        f.write("[Desktop Entry]\nType=Application\nName=Enregistreur\n"
                "Exec=%s %%u\nMimeType=%s;\nNoDisplay=true\n" % (enregistreur, ";".join(types)))
    with open(os.path.join(dossiers["XDG_CONFIG_HOME"], "mimeapps.list"), "w") as f:
        f.write("[Default Applications]\n")
        for t in types:
            f.write("%s=enregistreur.desktop\n" % t)
    return dossiers, telechargements, ouverts


def port_libre():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def application(scenario, profil):
    """The real web application a scenario is named after (Debian's DokuWiki, npm's
    TiddlyWiki), served from a throw-away copy of its data: (process, address, data folder)."""
    port, dossier = port_libre(), os.path.join(profil, "application")
    if scenario.startswith("dokuwiki"):
        conf = os.path.join(dossier, "conf")
        for d in ["conf"] + ["donnees/" + d for d in ("pages", "attic", "meta", "media", "media_attic", "media_meta", "cache",
                                                    "index", "locks", "tmp", "log")]:
            os.makedirs(os.path.join(dossier, d))
        fichiers = {"local.php": "<?php $conf['savedir'] = '%s/donnees'; $conf['lang'] = 'fr';"
                    " $conf['useacl'] = 1; $conf['updatecheck'] = 0;" % dossier,
                    "acl.auth.php": "* @ALL 1\n* @user 8\n",
                    "plugins.local.php": "<?php $plugins['testing'] = 0;",
                    "users.auth.php": "anne:%s:Anne:anne@example.org:user\n"
                    % hashlib.md5(b"motdepasse").hexdigest(),
                    "prealable.php": "<?php define('DOKU_CONF', '%s/');" % conf}
        for nom, texte in fichiers.items():
            with open(os.path.join(conf, nom), "w") as f:
                f.write(texte)
        commande = ["php", "-d", "auto_prepend_file=" + os.path.join(conf, "prealable.php"),
                    "-S", "127.0.0.1:%d" % port, "-t", "/usr/share/dokuwiki"]
    elif scenario.startswith("tiddlywiki"):
        tw = [os.path.join(RACINE, "node_modules", "tiddlywiki", "tiddlywiki.js"), dossier]
        subprocess.run(["node"] + tw + ["--init", "server"], check=True, stdout=subprocess.DEVNULL)
        commande = ["node"] + tw + ["--listen", "host=127.0.0.1", "port=%d" % port]
    else:
        return None, None, None
    processus = subprocess.Popen(commande, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    for _ in range(200):
        with socket.socket() as s:
            if s.connect_ex(("127.0.0.1", port)) == 0:
                return processus, "http://127.0.0.1:%d/" % port, dossier
        time.sleep(0.1)
    sys.exit("%s did not start" % scenario)


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: scenario.py <brindex_e2e binary> <scenario>")
    binaire, scenario = sys.argv[1], sys.argv[2]
    profil = tempfile.mkdtemp(prefix="brindex-e2e-")
    serveur = appli = None
    try:
        dossiers, telechargements, ouverts = preparer_profil(profil)
        journal_serveur = os.path.join(profil, "requetes.jsonl")
        libre = port_libre()
        appli, adresse_appli, donnees_appli = application(scenario, profil)
        serveur = subprocess.Popen(
            [sys.executable, SERVEUR, "--port", "0", "--journal", journal_serveur, "--lent", "3",
             "--second", str(libre)], stdout=subprocess.PIPE, text=True)
        premiere = serveur.stdout.readline().split()
        if len(premiere) != 2 or premiere[0] != "PORT":
            sys.exit("the test space did not start")
        env = dict(os.environ)
        env.update(dossiers)
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
            "BRINDEX_E2E_APPLICATION": adresse_appli or "",
            "BRINDEX_E2E_DONNEES_APPLICATION": donnees_appli or "",
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
        for processus in (serveur, appli):
            if processus:
                processus.terminate()
                processus.wait()
        if os.environ.get("BRINDEX_E2E_GARDER"):
            print("profile kept in", profil)
        else:
            shutil.rmtree(profil, ignore_errors=True)


if __name__ == "__main__":
    main()
