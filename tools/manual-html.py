#!/usr/bin/env python3
"""Makes the HTML copy of the manual with Debian's python3-markdown.

    python3 tools/manual-html.py docs/manual.md OUT.html

The figures stay beside it under manual/, as in docs/. Anchors are the
manual's own <a id="..."> tags, which "Read About" in the plug-in's menu opens.
"""
import sys

import markdown

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title}</title>
<style>
body {{ font-family: sans-serif; max-width: 48em; margin: 2em auto; padding: 0 1em;
       line-height: 1.5; color: #222; background: #fdfdfd; }}
h1, h2, h3 {{ line-height: 1.2; }}
h2 {{ border-bottom: 2px solid #c24e54; padding-bottom: 0.2em; margin-top: 2em; }}
img {{ max-width: 100%; }}
table {{ border-collapse: collapse; margin: 1em 0; }}
th, td {{ border: 1px solid #ccc; padding: 0.3em 0.6em; text-align: left; vertical-align: top; }}
code, pre {{ background: #f0f0f0; }}
pre {{ padding: 0.6em; overflow-x: auto; }}
:target + h3, :target + h4 {{ background: #fbe9ea; }}
</style>
</head>
<body>
{body}
</body>
</html>
"""


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as f:
        text = f.read()
    title = next((line[2:].strip() for line in text.splitlines() if line.startswith("# ")), "Manual")
    body = markdown.markdown(text, extensions=["tables", "fenced_code", "sane_lists"])
    with open(sys.argv[2], "w", encoding="utf-8") as f:
        f.write(PAGE.format(title=title, body=body))


if __name__ == "__main__":
    main()
