# Written before this text: set -euo pipefail, and the variables with capital letters.

write_progress() {
    rm -f "$PROGRESS_FILE.new"    # a link is not written through
    printf '{"stage":"%s","fraction":%s,"totalBytes":%s}\n' "$1" "$2" "$3" > "$PROGRESS_FILE.new"
    mv -f "$PROGRESS_FILE.new" "$PROGRESS_FILE"
}

is_good_python() {
    [ -x "$1" ] && "$1" - <<< 'import platform, sys; sys.exit(sys.version_info < (3, 10) or platform.machine() != "arm64")'
}

find_python() {
    local candidate
    for candidate in "${PYTHON_CANDIDATES[@]}"; do
        if is_good_python "$candidate"; then
            printf '%s\n' "$candidate"
            return 0
        fi
    done
    return 1
}

mkdir -p "$GEMMA_DIRECTORY" "$CACHE_DIRECTORY" "$MODEL_DIRECTORY"
write_progress "Preparando entorno local" 0.04 0

if ! PYTHON="$(find_python)"; then
    echo "Gemma necesita Python 3.10 o superior en arm64 para instalar MLX."
    exit 43
fi

ENVIRONMENT_PYTHON="$ENVIRONMENT_DIRECTORY/bin/python3"
# An installation that was interrupted may leave an environment without pip.
if ! { is_good_python "$ENVIRONMENT_PYTHON" && "$ENVIRONMENT_PYTHON" -m pip --version; }; then
    rm -rf "$ENVIRONMENT_DIRECTORY"
    "$PYTHON" -m venv "$ENVIRONMENT_DIRECTORY"
fi

write_progress "Instalando dependencias de Gemma" 0.08 0
"$ENVIRONMENT_PYTHON" -m pip install --upgrade pip setuptools wheel
"$ENVIRONMENT_PYTHON" -m pip install --upgrade "mlx-vlm>=0.4.3" "huggingface_hub[hf_xet]" pillow torch torchvision
"$ENVIRONMENT_PYTHON" -m pip install --upgrade "transformers>=5.13" "huggingface_hub[hf_xet]>=1.0"

write_progress "Ajustando runtime de Gemma" 0.10 0
"$ENVIRONMENT_PYTHON" -c "$PATCH_RUNTIME" "$("$ENVIRONMENT_PYTHON" -c 'import site; print(site.getsitepackages()[0])')"

write_progress "Calculando tamaño del modelo" 0.12 0
# The hub's client never goes on with these files of an interrupted download.
if [ -d "$MODEL_DIRECTORY/.cache" ]; then
    find "$MODEL_DIRECTORY/.cache" -type f -name '*.incomplete' -delete
fi
unset HF_HUB_OFFLINE TRANSFORMERS_OFFLINE
export HF_HOME="$CACHE_DIRECTORY"
export HF_HUB_DISABLE_PROGRESS_BARS=1 HF_HUB_DISABLE_TELEMETRY=1
# The other transport writes its ranges in any order, so that the size of a file would tell nothing.
export HF_HUB_DISABLE_XET=1
PROGRESS_FILE="$PROGRESS_FILE" "$ENVIRONMENT_PYTHON" -c "$DOWNLOAD_MODEL" "$REPOSITORY" "$MODEL_DIRECTORY"

if ! "$ENVIRONMENT_PYTHON" -c "import mlx_vlm"; then
    echo "El motor local se ha instalado, pero no arranca."
    exit 1
fi
