"""Tables of figures, for reading and for docs/quality.md."""
import re
import textwrap

# Heading, name, decimals.
COLUMNS = (("TMQI", "tmqi", 3), ("S", "s", 3), ("N", "n", 3), ("hue", "hue", 2), ("95%", "hue_95", 2),
           ("8bit", "hue_8", 2), ("hue clipped", "clipped_hue", 2), ("95%", "clipped_hue_95", 1),
           ("purity", "purity", 2), ("white any%", "white_any", 2), ("all%", "white_all", 2),
           ("black%", "black_all", 2), ("halo%", "halo", 2), ("edges", "edges", 1), ("noise", "noise", 2),
           ("L*", "lightness", 1), ("<20%", "dark", 1), (">95%", "light", 1), ("seam", "seam", 2),
           ("preview", "preview", 2), ("99%", "preview_99", 1), ("blurred", "preview_smooth", 2),
           ("99%", "preview_smooth_99", 1), ("same L*", "same_look", 2))
DOCS = (("TMQI", "tmqi", 3), ("hue error °", "hue", 2), ("of clipped °", "clipped_hue", 1), ("purity", "purity", 2),
        ("clipped %", "white_any", 1), ("halo %", "halo", 2), ("halo at edges L*", "edges", 1),
        ("noise gain", "noise", 2), ("lightness L*", "lightness", 0), ("seam", "seam", 1))
BEGIN, END = "<!-- quality -->", "<!-- /quality -->"


def mean(rows, name):
    known = [row[name] for row in rows if row.get(name) is not None]
    return sum(known) / len(known) if known else None


def _cell(row, name, decimals):
    number = row.get(name)
    return "" if number is None else f"{number:.{decimals}f}"


def means(result):
    """Of all pictures, with the largest overshoot at any of the edges."""
    names = {name for row in result["pictures"].values() for name in row}
    row = {name: mean(result["pictures"].values(), name) for name in names}
    if result.get("edges"):
        row["edges"] = max(max(sides) for sides in result["edges"].values())
    row.update(result.get("neighbours", {}))
    return row


def plain(results):
    """For each mapper a line per picture and one of means."""
    lines = []
    for name, result in results.items():
        rows = [*result["pictures"].items(), ("mean", means(result))]
        shown = [column for column in COLUMNS if any(row.get(column[1]) is not None for _, row in rows)]
        cells = [[name[:28], *(heading for heading, _, _ in shown)]]
        cells += [[label[:28], *(_cell(row, key, decimals) for _, key, decimals in shown)] for label, row in rows]
        widths = [max(map(len, column)) for column in zip(*cells)]
        for row in cells:
            lines.append("  ".join([row[0].ljust(widths[0]), *map(str.rjust, row[1:], widths[1:])]))
        if result.get("edges"):
            lines.append("overshoot at edges, dark and light side, L*: " + ", ".join(
                f"{stops} stops {dark:.1f} {light:.1f}" for stops, (dark, light) in result["edges"].items()))
        lines.append("")
    return "\n".join(lines)


def markdown(results):
    lines = ["| setting | " + " | ".join(heading for heading, _, _ in DOCS) + " |", "|---|" + "---:|" * len(DOCS)]
    for name, result in results.items():
        row = means(result)
        lines.append(f"| {name} | " + " | ".join(_cell(row, key, decimals) for _, key, decimals in DOCS) + " |")
    names = list(next(iter(results.values()))["pictures"])
    return "\n".join([*lines, "", *textwrap.wrap(f"{len(names)} pictures: {', '.join(names)}.", 118)])


def write_docs(page, results):
    text = page.read_text(encoding="utf-8")
    between = re.compile(re.escape(BEGIN) + ".*?" + re.escape(END), re.DOTALL)
    if not between.search(text):
        raise ValueError(f"{page} has no lines {BEGIN} and {END}")
    page.write_text(between.sub(lambda _: f"{BEGIN}\n{markdown(results)}\n{END}", text), encoding="utf-8")
