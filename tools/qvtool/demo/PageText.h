// The frame of the demo page: everything but the panels.
#ifndef QV_TOOLS_QVTOOL_DEMO_PAGETEXT_H
#define QV_TOOLS_QVTOOL_DEMO_PAGETEXT_H

namespace qvtool::demo {

inline constexpr char kPageText[] = R"page(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>qvAcceleratedLib: every operation on one frame</title>
<link rel="icon" href="data:,">
<style>
:root {
  color-scheme: light dark;
  --page: #f5f4f1; --card: #fff; --ink: #1c1e22; --soft: #666a73; --line: #dfdcd5;
  --accent: #b4460c; --code: #f3f1ec; --check: #d6d6d6;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #14161a; --card: #1d2026; --ink: #e9e8e4; --soft: #9ba0aa; --line: #31353e;
    --accent: #ff9d5c; --code: #15171c; --check: #3c3f46;
  }
}
* { box-sizing: border-box; }
html { scroll-behavior: smooth; scroll-padding-top: 1rem; }
body {
  margin: 0; background: var(--page); color: var(--ink);
  font: 16px/1.55 system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif;
}
main, header.top { max-width: 84rem; margin: 0 auto; padding: 0 clamp(1rem, 4vw, 3rem); }
header.top { padding-top: clamp(2rem, 6vw, 4.5rem); }
h1 { font-size: clamp(1.9rem, 5vw, 3.1rem); line-height: 1.1; letter-spacing: -.025em; margin: 0; }
.lead { font-size: 1.15rem; color: var(--soft); max-width: 42rem; margin: .7rem 0 1.4rem; }
.chips { list-style: none; display: flex; flex-wrap: wrap; gap: .5rem; margin: 0; padding: 0; }
.chips li {
  background: var(--card); border: 1px solid var(--line); border-radius: 2rem;
  padding: .25rem .85rem; font-size: .9rem;
}
.chips span { color: var(--soft); margin-right: .25rem; }
h2 { font-size: 1.5rem; letter-spacing: -.015em; margin: 3.2rem 0 1rem; }
h3 { font-size: 1.12rem; margin: 0; }
.cards {
  display: grid; gap: 1.4rem; align-items: start;
  grid-template-columns: repeat(auto-fill, minmax(min(100%, 34rem), 1fr));
}
.card, .summary {
  background: var(--card); border: 1px solid var(--line); border-radius: .9rem;
  padding: clamp(1rem, 2.2vw, 1.6rem); min-width: 0;
}
.card { display: flex; flex-direction: column; }
.formula {
  font: 500 .98rem/1.5 ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace;
  color: var(--accent); margin: .35rem 0 0; overflow-wrap: anywhere;
}
.note { color: var(--soft); margin: .35rem 0 0; font-size: .95rem; }
pre {
  font: .82rem/1.55 ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace;
  background: var(--code); border-radius: .5rem; padding: .7rem .9rem; margin: .9rem 0 0;
  white-space: pre-wrap; overflow-wrap: anywhere;
}
.numbers {
  display: flex; flex-wrap: wrap; gap: .2rem 1.5rem; align-items: baseline; margin: .8rem 0 .9rem;
  color: var(--soft); font-size: .92rem;
}
.numbers b {
  color: var(--ink); font-size: 1.35rem; font-variant-numeric: tabular-nums;
  letter-spacing: -.01em;
}
.pictures {
  display: grid; gap: .8rem;
  grid-template-columns: repeat(auto-fit, minmax(min(100%, 15rem), 1fr));
}
figure { margin: 0; min-width: 0; }
img {
  display: block; width: 100%; height: auto; border-radius: .4rem; cursor: zoom-in;
  background: var(--code);
}
img.detail { image-rendering: pixelated; }
img.alpha {
  background: repeating-conic-gradient(var(--check) 0 25%, transparent 0 50%) 0 0 / 20px 20px;
}
figcaption { font-size: .84rem; color: var(--soft); margin-top: .35rem; }
figcaption b {
  text-transform: uppercase; font-size: .7rem; letter-spacing: .06em; color: var(--accent);
  margin-right: .3rem;
}
.summary { margin-top: 2rem; overflow-x: auto; }
table {
  border-collapse: collapse; width: 100%; font-size: .94rem; font-variant-numeric: tabular-nums;
}
th, td {
  text-align: left; padding: .34rem .9rem .34rem 0; border-bottom: 1px solid var(--line);
  white-space: nowrap;
}
tbody tr:last-child > * { border-bottom: 0; }
tbody th { font-weight: 500; white-space: normal; }
td:nth-child(2), td:nth-child(3), thead th:nth-child(2), thead th:nth-child(3) {
  text-align: right;
}
thead th { color: var(--soft); font-weight: 500; font-size: .85rem; }
.bar { width: 42%; padding-right: 0; }
.bar i {
  display: block; height: .6rem; min-width: 2px; border-radius: .3rem; background: var(--accent);
}
a { color: inherit; text-decoration-color: var(--line); text-underline-offset: .2em; }
a:hover { text-decoration-color: currentColor; }
footer { color: var(--soft); font-size: .9rem; padding: 3rem 0 4rem; max-width: 46rem; }
dialog { border: 0; padding: 0; background: transparent; max-width: 96vw; max-height: 96vh; }
dialog::backdrop { background: rgb(0 0 0 / .82); }
dialog img { width: min(96vw, 1440px); max-height: 92vh; object-fit: contain; cursor: zoom-out; }
@media (max-width: 40rem) { .bar { display: none; } }
@media print { .card { break-inside: avoid; } }
</style>
</head>
<body>
<header class="top">
<h1>qvAcceleratedLib</h1>
<p class="lead">Every operation on one frame: the call, what it computes, how long it takes here,
and the pictures before and after.</p>
<ul class="chips">@CHIPS@</ul>
</header>
<main>
<div class="summary"><table>
<thead><tr><th>Operation</th><th>ms</th><th>ns per pixel</th><th class="bar"></th></tr></thead>
<tbody>
@SUMMARY@</tbody></table></div>
@CARDS@
<footer>Times are those of the fastest of several runs on the machine that made this page, with
memory and threads warm. Pictures are scaled down to fit the page, unless their caption speaks of a
detail; they lie beside it in full size as PNG files.</footer>
</main>
<dialog id="large"><img alt=""></dialog>
<script>
const large = document.getElementById('large');
document.querySelectorAll('figure img').forEach(image => image.addEventListener('click', () => {
  const shown = large.querySelector('img');
  shown.src = image.src;
  shown.alt = image.alt;
  shown.className = image.className;
  large.showModal();
}));
large.addEventListener('click', () => large.close());
</script>
</body>
</html>
)page";

}  // namespace qvtool::demo

#endif
