#!/usr/bin/env python3
"""Makes a page of HTML from a chapter of the documentation, to be read where the package puts it.

makeHtml.py CMARK-GFM CHAPTER.md PAGE.html
"""
import html
import pathlib
import re
import subprocess
import sys

# The chapters that are installed; a link to anything else leaves its words alone.
pages = {"manual.md": "manual.html", "protocol.md": "protocol.html", "hubn-tool.md": "hubn-tool.html",
         "../simulator/README.md": "simulator.html", "../docs/protocol.md": "protocol.html"}

frame = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>{title}</title>
<style>
body {{ font-family: sans-serif; line-height: 1.4; max-width: 60em; margin: 1em auto; padding: 0 1em; }}
table {{ border-collapse: collapse; }}
th, td {{ border: 1px solid #bbb; padding: 0.2em 0.6em; text-align: left; vertical-align: top; }}
pre {{ background: #f4f4f4; padding: 0.6em; overflow-x: auto; }}
img {{ max-width: 100%; }}
</style>
</head>
<body>
{body}</body>
</html>
"""


def words(markup):
    return html.unescape(re.sub(r"<[^>]*>", "", markup))


def with_id(heading):
    level, markup = heading.groups()
    name = re.sub(r"[^\w -]", "", words(markup).lower()).replace(" ", "-")
    return '<h%s id="%s">%s</h%s>' % (level, name, markup, level)


def link(anchor):
    target, markup = anchor.groups()
    name, _, place = target.partition("#")
    if name and name not in pages:
        return markup
    return '<a href="%s%s">%s</a>' % (pages.get(name, ""), "#" + place if place else "", markup)


cmark, chapter, page = sys.argv[1:]
body = subprocess.run([cmark, "--extension", "table", chapter], check=True, stdout=subprocess.PIPE).stdout.decode("utf-8")
body = re.sub(r"<h([1-6])>(.*?)</h\1>", with_id, body)
body = re.sub(r'<a href="([^"]*)">(.*?)</a>', link, body, flags=re.S)
title = words(re.search(r"<h1[^>]*>(.*?)</h1>", body).group(1))
pathlib.Path(page).write_text(frame.format(title=html.escape(title), body=body), encoding="utf-8")
