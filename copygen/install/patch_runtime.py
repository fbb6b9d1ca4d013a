"""Adjusts the installed packages: patch_runtime.py SITE_PACKAGES"""

import os
import sys
from pathlib import Path

site_packages = Path(sys.argv[1])


def patch(name, replacements, already=(), is_optional=False):
    """Replaces the first occurrence of the first text that is found. All texts are whole lines."""
    path = site_packages / name
    if not path.is_file():
        if is_optional:
            return
        sys.exit(f"No se ha podido ajustar {path.name}.")
    # A line break before the first line and one after the last make every line whole.
    text = "\n" + path.read_text(encoding="utf-8")
    done = [new for _, new in replacements] + list(already)
    if any("\n" + each in text for each in done):
        return
    for old, new in replacements:
        if "\n" + old in text:
            text = text.replace("\n" + old, "\n" + new, 1)
            break
    else:
        sys.exit(f"No se ha podido ajustar {path.name}.")
    # Renamed, so that an interruption never leaves half a module.
    written = path.with_name(path.name + ".new")
    written.write_text(text[1:], encoding="utf-8")
    os.replace(written, path)


def guarded(line):
    return f"try:\n    {line}\nexcept AttributeError:\n    pass\n"


registrations = [
    f"AutoTokenizer.register({name}, fast_tokenizer_class=NewlineTokenizer)"
    for name in ('"NewlineTokenizer"', "NewlineTokenizer")
]
# mlx-vlm does not bring mlx_lm any more.
patch(
    "mlx_lm/tokenizer_utils.py",
    [(line + "\n", guarded(line)) for line in registrations],
    is_optional=True,
)
patch(
    "mlx_vlm/utils.py",
    [
        (
            "    model.load_weights(list(weights.items()))\n",
            "    model.load_weights(list(weights.items()), strict=kwargs.get(\"strict\", True))\n",
        )
    ],
    already=["    model.load_weights(list(weights.items()), strict=strict)\n"],
)
quantize = "        quantize_activations=args.quantize_activations,\n"
patch(
    "mlx_vlm/generate/dispatch.py",
    [(quantize + "    )\n", quantize + "        strict=False,\n    )\n")],
)
