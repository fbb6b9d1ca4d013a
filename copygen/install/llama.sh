# Written before this text: set -euo pipefail, and the variables with capital letters.

write_progress() {
    rm -f "$PROGRESS_FILE.new"    # a link is not written through
    printf '{"stage":"%s","fraction":%s,"totalBytes":%s}\n' "$1" "$2" "$3" > "$PROGRESS_FILE.new"
    mv -f "$PROGRESS_FILE.new" "$PROGRESS_FILE"
}

runs() {
    # --foreground: stays in the process group that the studio ends.
    [ -x "$1" ] && timeout --foreground -k 2 25 "$1" --version < /dev/null > /dev/null 2>&1
}

# The program that the studio will start: the first that exists, as the studio chooses it.
engine_runs() {
    if [ -n "$CONFIGURED_PROGRAM" ]; then
        runs "$CONFIGURED_PROGRAM"
    elif [ -x "$ENGINE_PROGRAM" ]; then
        runs "$ENGINE_PROGRAM"
    else
        runs "$PATH_PROGRAM"
    fi
}

# Each step may be the last one of an interrupted installation.
install_engine() {
    local unpacked="$ENGINE_DIRECTORY.new"
    "${FETCH[@]}" "$ENGINE_URL" "$ENGINE_BYTES" "$ENGINE_SHA256" "$ENGINE_ARCHIVE"
    rm -rf "$unpacked"
    mkdir -p "$unpacked"
    # From standard input: tar takes a colon in a name for another machine.
    tar -xz --strip-components=1 --no-same-owner -C "$unpacked" < "$ENGINE_ARCHIVE" || {
        echo "No se ha podido desempaquetar el motor local. Comprueba el espacio libre."
        exit 45
    }
    rm -rf "$ENGINE_DIRECTORY"
    mv "$unpacked" "$ENGINE_DIRECTORY"
    rm -f "$ENGINE_ARCHIVE"
}

ENGINE_ARCHIVE="$GEMMA_DIRECTORY/engine.tar.gz"
mkdir -p "$GEMMA_DIRECTORY" "$MODEL_DIRECTORY"
write_progress "Preparando entorno local" 0.04 0

if ! engine_runs; then
    write_progress "Instalando motor local" 0.08 0
    if [ -n "$CONFIGURED_PROGRAM" ]; then
        echo "El motor configurado no arranca: $CONFIGURED_PROGRAM"
        exit 44
    fi
    if [ -z "$ENGINE_URL" ]; then
        echo "Falta el motor llama.cpp. Instala el paquete llama.cpp-tools-extra."
        exit 44
    fi
    install_engine
    if ! engine_runs; then
        echo "El motor llama.cpp descargado no arranca en este equipo. Instala el paquete llama.cpp-tools-extra."
        exit 44
    fi
else
    # What an interrupted installation left.
    rm -rf "$ENGINE_ARCHIVE" "$ENGINE_ARCHIVE.part" "$ENGINE_DIRECTORY.new"
fi

write_progress "Calculando tamaño del modelo" 0.12 0
TOTAL_BYTES=$((MODEL_BYTES + PROJECTOR_BYTES))
write_progress "Descargando Gemma" 0.14 "$TOTAL_BYTES"
"${FETCH[@]}" "$MODEL_URL" "$MODEL_BYTES" "$MODEL_SHA256" "$MODEL_FILE"
"${FETCH[@]}" "$PROJECTOR_URL" "$PROJECTOR_BYTES" "$PROJECTOR_SHA256" "$PROJECTOR_FILE"

write_progress "Finalizando instalación" 0.98 "$TOTAL_BYTES"
if ! engine_runs; then
    echo "El motor local se ha instalado, pero no arranca."
    exit 1
fi
