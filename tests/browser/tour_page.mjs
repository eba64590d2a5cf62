// The page of the tour is laid out as its readers need it.
//
//     tour_page.mjs TOUR_REPORT.HTML
import { readdirSync, readFileSync } from "node:fs";
import { addressOf, openBrowser, WIDTHS } from "./check_page.mjs";

const sections = new URL("../../examples/tour/sections/", import.meta.url);
const source = new Set(readdirSync(sections).filter((name) => name.endsWith(".py"))
    .flatMap((name) => readFileSync(new URL(name, sections), "utf8").split("\n")).map((line) => line.trim()));
const faults = [];
const expect = (condition, what) => condition || faults.push(what);

/** What the page shows in a window of this width. */
function look() {
    const box = (element) => element.getBoundingClientRect();
    const all = (selector, within = document) => [...within.querySelectorAll(selector)];
    return {
        headings: all("h2").length,
        links: all("nav a").length,
        verdicts: all("#summary tbody tr").map((row) => row.lastElementChild.textContent.trim()),
        summaryFirst: box(document.querySelector("#summary")).top < box(document.querySelector("h2")).top,
        code: all("pre").flatMap((pre) => all(":scope > span", pre).map((line) => line.textContent.trim())),
        beside: all(".block").filter((block) => block.querySelector("details[open] pre") && block.querySelector("table"))
            .map((block) => box(block.querySelector("pre")).left >= box(block.querySelector("table")).right),
        folded: all("details:not([open])").length === all("details").length,
        figures: all("figure").map((figure) => all("svg", figure).filter((svg) => box(svg).width > 0)
            .map((svg) => box(svg).width / box(figure).width)),
        colours: all("svg [style], svg[style]").map((e) => e.getAttribute("style")).filter((s) => /: #[0-9a-f]{6}/.test(s)),
        iterates: all("table").filter((t) => t.textContent.includes("iterate")).map((t) => all("tbody tr", t).length),
        digits: all("thead th").filter((th) => th.textContent === "equal digits").length,
    };
}

const browser = await openBrowser();
for (const width of WIDTHS) {
    const page = await browser.newPage({ viewport: { width, height: 900 } });
    await page.goto(addressOf(process.argv[2]));
    const seen = await page.evaluate(look);
    await page.close();
    const at = ` (${width} pixels)`;
    expect(seen.headings > 0 && seen.links === seen.headings, `${seen.links} links to ${seen.headings} sections${at}`);
    expect(seen.verdicts.length === seen.headings, `${seen.verdicts.length} verdicts for ${seen.headings} sections${at}`);
    expect(seen.verdicts.every((v) => v === "✓ holds"), `verdicts: ${seen.verdicts.join(", ")}${at}`);
    expect(seen.summaryFirst, `the summary does not come first${at}`);
    const strange = seen.code.filter((line) => !source.has(line));
    expect(strange.length === 0, `code that stands in no section: ${strange[0]}${at}`);
    expect(seen.code.length > 100, `only ${seen.code.length} lines of code are shown${at}`);
    if (width > 1000) expect(seen.beside.length > 10 && seen.beside.every(Boolean), `code is not beside its numbers${at}`);
    else expect(seen.folded, `code is not folded away${at}`);
    expect(seen.figures.length > 0 && seen.figures.every((f) => f.length === 1 && Math.abs(f[0] - 1) < 0.01),
        `a figure is not as wide as the text, or shows twice${at}`);
    expect(seen.colours.length === 0, `a colour that does not follow the mode: ${seen.colours[0]}${at}`);
    expect(seen.iterates.some((rows) => rows > 5), `no table of iterates${at}`);
    expect(seen.digits > 5, `no column of equal digits${at}`);
}
await browser.close();
for (const fault of faults) console.error(`the page of the tour: ${fault}`);
console.log(`the page of the tour: ${faults.length === 0 ? "laid out as it should be" : `${faults.length} faults`}`);
process.exitCode = faults.length === 0 ? 0 : 1;
