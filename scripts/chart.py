"""Charts of speed beside another program's, as SVG."""
import math
from xml.sax.saxutils import escape

WIDTH, ROW, LABELS, NOTES = 820, 20, 270, 190
FASTER, SLOWER = "#2a7", "#c54"


def ratios(title, bars):
    """Bars of (label, how many times faster, note) from a line at 1, on a logarithmic axis."""
    lowest = min([1, *(ratio for _, ratio, _ in bars)])
    highest = max([2, *(ratio for _, ratio, _ in bars)])
    scale = (WIDTH - LABELS - NOTES) / math.log(highest / lowest)
    bottom = 50 + ROW * len(bars)

    def x(ratio):
        return LABELS + math.log(ratio / lowest) * scale

    def text(left, y, words, anchor="start", size=12):
        return (f'<text x="{left:.1f}" y="{y}" text-anchor="{anchor}" font-size="{size}">'
                f'{escape(words)}</text>')

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{bottom + 24}" '
           f'viewBox="0 0 {WIDTH} {bottom + 24}" font-family="sans-serif" fill="#222">',
           '<rect width="100%" height="100%" fill="#fff"/>', text(10, 22, title, size=14)]
    for tick in (0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50):
        if lowest <= tick <= highest:
            out.append(f'<path d="M{x(tick):.1f} 40V{bottom}" '
                       f'stroke="{"#222" if tick == 1 else "#ccc"}"/>')
            out.append(text(x(tick), bottom + 16, f"{tick:g}x", "middle"))
    for i, (label, ratio, note) in enumerate(bars):
        y = 44 + i * ROW
        left, right = sorted((x(1), x(ratio)))
        out.append(text(LABELS - 10, y + 13, label, "end"))
        out.append(f'<rect x="{left:.1f}" y="{y + 2}" width="{right - left:.1f}" '
                   f'height="{ROW - 6}" fill="{FASTER if ratio >= 1 else SLOWER}"/>')
        out.append(text(right + 5, y + 13, f"{ratio:.2g}x {note}" if ratio < 10
                        else f"{ratio:.0f}x {note}"))
    return "\n".join(out) + "\n</svg>\n"
