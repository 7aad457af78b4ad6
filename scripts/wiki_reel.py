#!/usr/bin/env python3
"""Serves a real wiki nobody here wrote on 127.0.0.1, from a throw-away copy of its data, to try
the application against (the end-to-end tests do): Debian's DokuWiki (a user "anne", password
"motdepasse") or npm's TiddlyWiki (as package-lock.json pins it; `npm ci` at the root).

    wiki_reel.py dokuwiki|tiddlywiki FOLDER

FOLDER (new or empty) receives its data; the first line printed is "PORT <n>" once the wiki
answers; it serves until it is stopped.
"""
import hashlib
import os
import signal
import socket
import subprocess
import sys
import time

RACINE = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def commande(wiki, dossier, port):
    if wiki == "tiddlywiki":
        tw = [os.path.join(RACINE, "node_modules", "tiddlywiki", "tiddlywiki.js"), dossier]
        subprocess.run(["node"] + tw + ["--init", "server"], check=True, stdout=subprocess.DEVNULL)
        return ["node"] + tw + ["--listen", "host=127.0.0.1", "port=%d" % port]
    # DokuWiki reads its configuration from conf/ here (not /etc) and keeps its pages in donnees/.
    conf = os.path.join(dossier, "conf")
    for d in ["conf"] + ["donnees/" + d for d in ("pages attic meta media media_attic media_meta "
                                                  "cache index locks tmp log").split()]:
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
    return ["php", "-d", "auto_prepend_file=" + os.path.join(conf, "prealable.php"),
            "-S", "127.0.0.1:%d" % port, "-t", "/usr/share/dokuwiki"]


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in ("dokuwiki", "tiddlywiki"):
        sys.exit(__doc__)
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        port = s.getsockname()[1]
    dossier = os.path.abspath(sys.argv[2])
    wiki = subprocess.Popen(commande(sys.argv[1], dossier, port), stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL)
    signal.signal(signal.SIGTERM, lambda *_: wiki.terminate())
    for _ in range(200):
        with socket.socket() as s:
            if s.connect_ex(("127.0.0.1", port)) == 0:
                print("PORT", port, flush=True)
                return wiki.wait()
        time.sleep(0.1)
    wiki.terminate()
    sys.exit("the wiki did not start")


if __name__ == "__main__":
    sys.exit(main())
