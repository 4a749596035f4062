#!/bin/sh
# Opens the demo page in headless Chromium, wide and narrow: every picture must decode, nothing may
# be fetched, no script may fail, and nothing may stick out sideways.
#
#   check_page.sh QVTOOL CHROMIUM
set -eu
qvtool=$1
chromium=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$qvtool" demo "$folder/demo" >/dev/null

# The checks go into a copy of the page and leave their result in its title.
cat >"$folder/check.html" <<'CHECK'
<script>
const problems = [];
window.addEventListener('error', event => problems.push('script: ' + event.message));
</script>
CHECK
cat "$folder/demo/index.html" >>"$folder/check.html"
cat >>"$folder/check.html" <<'CHECK'
<script>
window.addEventListener('load', () => {
  const images = [...document.querySelectorAll('figure img')];
  if (images.length < 50) problems.push('only ' + images.length + ' pictures');
  for (const image of images)
    if (!image.complete || image.getBoundingClientRect().width < 60 ||
        image.naturalWidth * (image.className ? 4 : 1) !== Number(image.getAttribute('width')))
      problems.push('picture ' + image.alt);
  for (const entry of performance.getEntriesByType('resource'))
    if (!entry.name.startsWith('data:')) problems.push('fetched ' + entry.name);
  const sideways = document.documentElement.scrollWidth - innerWidth;
  if (sideways > 0) problems.push(sideways + ' pixels stick out at a width of ' + innerWidth);
  images[0].parentNode.click();
  const dialog = document.getElementById('large');
  if (!dialog.open || dialog.querySelector('img').src !== images[0].src)
    problems.push('a picture does not open');
  dialog.click();
  if (dialog.open) problems.push('an opened picture does not close');
  document.title = 'checked ' + images.length + ' pictures: ' + (problems.join('; ') || 'good');
});
</script>
CHECK

for size in 1600,1200 400,1200; do
  title=$("$chromium" --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$folder/profile" --window-size=$size --dump-dom "file://$folder/check.html" \
    2>"$folder/log" | grep -o '<title>checked[^<]*' | head -n 1) || true
  echo "$size: ${title#<title>}"
  case $title in
    *': good') ;;
    *) tail -n 5 "$folder/log" >&2; exit 1 ;;
  esac
done
