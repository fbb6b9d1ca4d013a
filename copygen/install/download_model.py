"""Downloads the model and tells its size: download_model.py REPOSITORY FOLDER"""

import contextlib
import json
import os
import sys

from huggingface_hub import HfApi, snapshot_download

repository, folder = sys.argv[1:]
progress_file = os.environ["PROGRESS_FILE"]


def write_progress(stage, fraction, total_bytes):
    progress = {"stage": stage, "fraction": fraction, "totalBytes": total_bytes}
    with contextlib.suppress(FileNotFoundError):
        os.remove(progress_file + ".new")  # a link is not written through
    with open(progress_file + ".new", "w", encoding="utf-8") as file:
        file.write(json.dumps(progress, ensure_ascii=False) + "\n")
    os.replace(progress_file + ".new", progress_file)


try:
    files = HfApi().model_info(repository, files_metadata=True, token=False).siblings
    total_bytes = sum(file.size or 0 for file in files)
except Exception:
    total_bytes = 0
write_progress("Descargando Gemma", 0.14, total_bytes)
# No token: an expired one of the user would be refused for a public model.
snapshot_download(repository, local_dir=folder, token=False)
write_progress("Finalizando instalación", 0.98, total_bytes)
