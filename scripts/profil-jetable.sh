# Sourced by the scripts that run the application in a throw-away profile (scripts/lancer,
# scripts/verifier-paquet): its own HOME and XDG folders, and a space started on a free port
# whose address is stored as if the user had typed it.

# profil_jetable FOLDER: HOME and the XDG folders, all under FOLDER, with a Downloads folder.
profil_jetable() {
    export HOME="$1/maison" XDG_CONFIG_HOME="$1/config" XDG_DATA_HOME="$1/donnees"
    export XDG_STATE_HOME="$1/etat" XDG_CACHE_HOME="$1/cache" XDG_RUNTIME_DIR="$1/execution"
    mkdir -p "$HOME/Téléchargements" "$XDG_CONFIG_HOME/brindex" "$XDG_DATA_HOME" \
        "$XDG_STATE_HOME" "$XDG_CACHE_HOME"
    mkdir -m 700 -p "$XDG_RUNTIME_DIR"
    echo "XDG_DOWNLOAD_DIR=\"$HOME/Téléchargements\"" >"$XDG_CONFIG_HOME/user-dirs.dirs"
}

# espace_stocke SPACE.py: starts the space (its process in $serveur, its address in $espace)
# and stores its address; fails if the space doesn't start.
espace_stocke() {
    coproc ESPACE { exec python3 "$1" --port 0; }
    serveur=$ESPACE_PID
    local mot port
    read -r mot port <&"${ESPACE[0]}"
    [ "$mot" = PORT ] || return 1
    espace="http://127.0.0.1:$port/"
    printf '[brindex]\nespaceURL=%s\n' "$espace" >"$XDG_CONFIG_HOME/brindex/brindex.conf"
}
