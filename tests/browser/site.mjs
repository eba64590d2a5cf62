// Opens the pages of the manual in headless Chromium: each kind of page at both widths and in both modes, every page on a
// phone for errors on the console, for mathematics and for its width, and the search.
//
//     site.mjs FOLDER [PAGE ...]      with pages: these alone
import { readdirSync, existsSync } from "node:fs";
import { createServer } from "node:http";
import { readFile } from "node:fs/promises";
import { extname, join, normalize, relative } from "node:path";
import { MODES, WIDTHS, openBrowser, openView } from "./check_page.mjs";

// One page of each kind; the others are made by the same code and are only opened. The first ones are looked at at every
// width in every mode, the others on a dark phone and on a light desk.
const KINDS = ["index.html", "howto/dunnett.html", "reference/NormalCDF.html", "benchmarks.html"];
const OTHERS = ["start/python.html", "howto/accuracy.html", "howto/distribution.html", "reference/index.html",
               "reference/distributions.html", "reference/OLS.html", "packages/python-stats.html",
               "reference/LBFGSBStep.html", "shield.html", "hosts.html", "decisions.html",
               "accuracy/exports.html", "glossary.html", "project/building.html", "search.html"];
const SEARCHES = { "Dunnett": "howto/dunnett.html", "Clopper-Pearson": "reference/BinomialPS.html",
                   "studentized range": "howto/all-pairs.html", "reverse communication": "howto/bounds.html",
                   "Tukey": "reference/MCaCDF.html", "NormalCDF": "reference/NormalCDF.html" };
const TYPES = { ".html": "text/html", ".js": "text/javascript", ".css": "text/css", ".svg": "image/svg+xml",
                ".png": "image/png", ".woff": "font/woff", ".otf": "font/otf" };

function serve(folder) {
    const server = createServer(async (request, response) => {
        const path = normalize(decodeURIComponent(new URL(request.url, "http://x").pathname));
        try {
            const content = await readFile(join(folder, path));
            response.writeHead(200, { "content-type": TYPES[extname(path)] ?? "application/octet-stream" });
            response.end(content);
        } catch {
            // Browsers ask for an icon by themselves.
            response.writeHead(path === "/favicon.ico" ? 204 : 404);
            response.end();
        }
    });
    return new Promise((done) => server.listen(0, "127.0.0.1", () => done(server)));
}

function pagesOf(folder, below = folder) {
    return readdirSync(below, { withFileTypes: true }).flatMap((entry) => {
        const path = join(below, entry.name);
        if (entry.isDirectory()) return entry.name.startsWith("_") ? [] : pagesOf(folder, path);
        return entry.name.endsWith(".html") ? [relative(folder, path)] : [];
    });
}

/** Errors on the console, files that are missing, mathematics that was not set, and what is wider than the window. */
async function glance(browser, address, paths, width) {
    const faults = [];
    const page = await browser.newPage({ viewport: { width, height: 900 } });
    let path;
    const tell = (text) => faults.push(`${path}, ${width} pixels: ${text}`);
    page.on("console", (message) => message.type() === "error" && tell(`console: ${message.text()}`));
    page.on("pageerror", (error) => tell(`script: ${error.message}`));
    page.on("response", (response) => response.status() >= 400 && tell(`not there: ${response.url()}`));
    page.on("request", (request) => request.url().startsWith(address) || tell(`from the network: ${request.url()}`));
    for (path of paths) {
        await page.goto(`${address}/${path}`, { waitUntil: "load" });
        if (await page.locator("div.math, span.math").count() > 0)
            await page.waitForFunction(() => [...document.querySelectorAll(".math")].every((m) =>
                m.querySelector(".mjx-chtml")), null, { timeout: 20000 })
                .catch(() => tell("mathematics was not set"));
        const [content, window] = await page.evaluate(() => [
            document.documentElement.scrollWidth, document.documentElement.clientWidth]);
        if (content > window) tell(`${content} pixels wide in a window of ${window}`);
        const errors = await page.locator(".mjx-error, .merror, [data-mjx-error]").count();
        if (errors > 0) tell(`${errors} formulas with an error`);
    }
    await page.close();
    return faults;
}

/** Does `work` for every item, two at a time: a tab that waits leaves the processor to the other. */
async function inTwoTabs(items, work) {
    const queue = [...items];
    const one = async () => {
        for (let item; (item = queue.shift()) !== undefined;) await work(item);
    };
    await Promise.all([one(), one()]);
}

async function search(browser, address, words, wanted) {
    const page = await browser.newPage();
    await page.goto(`${address}/search.html?q=${encodeURIComponent(words)}`);
    await page.waitForSelector("#search-results ul.search li", { timeout: 20000 }).catch(() => {});
    await page.waitForTimeout(1500);
    const found = await page.$$eval("#search-results ul.search li > a", (links) => links.map((a) => a.getAttribute("href")));
    await page.close();
    return found.some((link) => link.split(/[?#]/)[0].endsWith(wanted)) ? [] :
        [`the search for "${words}" does not find ${wanted}, but ${found.slice(0, 8).join(", ") || "nothing"}`];
}

const [folder, ...only] = process.argv.slice(2);
if (!folder || !existsSync(join(folder, "index.html"))) {
    console.error("site.mjs FOLDER: the folder with index.html");
    process.exit(2);
}
const server = await serve(folder);
const address = `http://127.0.0.1:${server.address().port}`;
const browser = await openBrowser();
let count = 0;
const report = (what, faults) => {
    count += faults.length;
    console.log(`${what}: ${faults.length === 0 ? "good" : `${faults.length} faults`}`);
    for (const fault of faults) console.log(`    ${fault}`);
};
try {
    const pages = only.length > 0 ? only : pagesOf(folder);
    const halves = await Promise.all([0, 1].map((half) =>
        glance(browser, address, pages.filter((_, i) => i % 2 === half), WIDTHS[0])));
    report(`${pages.length} pages, ${WIDTHS[0]} pixels`, halves.flat());
    await inTwoTabs(Object.entries(SEARCHES), async ([words, wanted]) =>
        report(`search for ${words}`, await search(browser, address, words, wanted)));
    const shots = process.env.ORVANTH_SCREENSHOTS;
    const kinds = only.length > 0 ? only : [...KINDS, ...OTHERS];
    const views = WIDTHS.flatMap((width) => MODES.map((mode) => ({ width, mode })));
    await inTwoTabs(views, async ({ width, mode }) => {
        const view = await openView(browser, width, mode);
        for (const kind of kinds)
            if (!OTHERS.includes(kind) || (width === WIDTHS[0]) === (mode === "dark"))
                report(`${kind}, ${width} pixels, ${mode}`, await view.check(`${address}/${kind}`, shots));
        await view.close();
    });
} finally {
    await browser.close();
    server.close();
}
process.exitCode = count === 0 ? 0 : 1;
