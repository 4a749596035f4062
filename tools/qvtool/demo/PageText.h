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
main, header { max-width: 78rem; margin: 0 auto; padding: 0 clamp(1rem, 4vw, 3rem); }
header { padding-top: clamp(1.5rem, 5vw, 3.5rem); }
h1 { font-size: clamp(1.8rem, 5vw, 2.8rem); line-height: 1.1; letter-spacing: -.025em; margin: 0; }
.lead { font-size: 1.15rem; color: var(--soft); max-width: 46rem; margin: .7rem 0 1.4rem; }
.contents { display: flex; flex-wrap: wrap; gap: .5rem; margin: 1.4rem 0 0; }
.contents a {
  background: var(--card); border: 1px solid var(--line); border-radius: 2rem;
  padding: .3rem .95rem; font-size: .95rem; text-decoration: none;
}
.contents a:hover { border-color: var(--accent); }
h2 { font-size: 1.5rem; letter-spacing: -.015em; margin: 3rem 0 -.2rem; }
h3 { font-size: 1.12rem; margin: 0; }
section { display: grid; gap: 1.4rem; grid-template-columns: minmax(0, 1fr); }
.card, .summary {
  background: var(--card); border: 1px solid var(--line); border-radius: .9rem;
  padding: clamp(1rem, 2.2vw, 1.6rem); min-width: 0;
}
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
.pictures {
  display: grid; gap: 1rem; margin-top: 1rem;
  grid-template-columns: repeat(auto-fill, minmax(min(100%, 336px), 1fr));
}
.pictures figure { max-width: 336px; }
figure { margin: 0; min-width: 0; }
figure button { all: unset; display: block; cursor: zoom-in; border-radius: .4rem; }
figure button:focus-visible { outline: 3px solid var(--accent); outline-offset: 2px; }
img {
  display: block; max-width: 100%; height: auto; border-radius: .4rem; background: var(--code);
}
img.detail { image-rendering: pixelated; }
figcaption { font-size: .84rem; color: var(--soft); margin-top: .35rem; }
figcaption b {
  text-transform: uppercase; font-size: .7rem; letter-spacing: .06em; color: var(--accent);
  margin-right: .3rem;
}
.cover button, .cover img { width: 100%; }
.cover figcaption { font-size: .92rem; }
.summary { overflow-x: auto; }
.machine { color: var(--soft); margin: 0; }
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
  text-align: right; white-space: nowrap;
}
thead th { color: var(--soft); font-weight: 500; font-size: .85rem; }
.bar { width: 42%; padding-right: 0; }
.bar i {
  display: block; height: .6rem; min-width: 2px; border-radius: .3rem; background: var(--accent);
}
a { color: inherit; text-decoration-color: var(--line); text-underline-offset: .2em; }
a:hover { text-decoration-color: currentColor; }
footer { color: var(--soft); font-size: .9rem; padding: 3rem 0 4rem; max-width: 46rem; }
dialog {
  border: 0; padding: 0; background: transparent; color: #fff; cursor: zoom-out;
  max-width: 96vw; max-height: 96vh; overflow: hidden; text-align: center;
}
dialog::backdrop { background: rgb(0 0 0 / .93); }
dialog:focus-visible { outline: none; }
dialog img {
  width: min(96vw, 1440px); height: auto; max-height: 86vh; object-fit: contain; background: none;
}
@media (max-width: 40rem) {
  .bar { display: none; }
  td, th { white-space: normal; }
}
@media print { .card { break-inside: avoid; } }
</style>
</head>
<body>
<header>
<h1>qvAcceleratedLib</h1>
<p class="lead">Fast operations on raw 8-bit frames, for C++, C and Python. Each of them has worked
on one picture here, @ABOUT@: below are the calls, what they compute and what came out.</p>
@COVER@
<nav class="contents" aria-label="Contents">
@CONTENTS@<a href="#times">Times</a>
</nav>
</header>
<main>
@FAMILIES@
<section id="times"><h2>Times</h2>
<p class="machine">@HOST@ Each time is that of the fastest of several runs, with memory and threads
warm; calls that stand together on a card are timed together.</p>
<div class="summary"><table>
<thead><tr><th>Operation</th><th>ms</th><th>ns a pixel</th><th class="bar"></th></tr></thead>
<tbody>
@TIMES@</tbody></table></div></section>
<footer>Names with qv_ are functions of the C interface, all others those of the class CqvAccLib.
Pictures are scaled down, except for details, whose pixels are shown four times as large.</footer>
</main>
<dialog id="large"><img alt=""><p></p></dialog>
<script>
for (const image of document.querySelectorAll('img[data-same]'))
  image.src = document.getElementById(image.dataset.same).src;
const large = document.getElementById('large');
for (const button of document.querySelectorAll('figure button'))
  button.addEventListener('click', () => {
    const image = button.querySelector('img'), shown = large.querySelector('img');
    shown.src = image.src;
    shown.alt = image.alt;
    shown.className = image.className;
    large.querySelector('p').textContent = image.alt;
    large.showModal();
  });
large.addEventListener('click', () => large.close());
</script>
</body>
</html>
)page";

}  // namespace qvtool::demo

#endif
