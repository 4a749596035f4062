"""What the scripts have in common that write files of the tree from others."""
import sys


def main(usage, contents):
    """Writes the texts that contents() gives for paths; with --check, compares them with what is
    there."""
    check = sys.argv[1:] == ["--check"]
    if sys.argv[1:] and not check:
        sys.exit(usage)
    differing = []
    for path, text in contents().items():
        if not check:
            path.write_text(text)
        elif not path.exists() or path.read_text() != text:
            differing.append(path.name)
    if differing:
        sys.exit(f"{sys.argv[0]} writes others than " + ", ".join(differing))
