// Opens pages in headless Chromium and checks them as a reader would meet them, on a phone and on a desk, in light and
// in dark mode: no error on the console, nothing wider than the window, no fault that axe-core finds (contrast,
// alternative texts, order of headings). Links to the page itself have to lead somewhere.
//
//     check_page.mjs [--screenshots FOLDER] FILE_OR_URL ...
//
// Other tests import openBrowser, openView, MODES and WIDTHS from here.
import { createRequire } from "node:module";
import { existsSync, mkdirSync } from "node:fs";
import { basename, resolve } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";
import { chromium } from "playwright-core";

export const WIDTHS = [420, 1280];
export const MODES = ["light", "dark"];
const AXE = createRequire(import.meta.url).resolve("axe-core/axe.min.js");

/** Debian's Chromium without windows, which needs less of the processor; ORVANTH_CHROMIUM names another one. */
export function openBrowser() {
    // Chromium's own sandbox needs rights that a container and root do not have.
    return chromium.launch({
        executablePath: process.env.ORVANTH_CHROMIUM ?? "/usr/bin/chromium-headless-shell",
        args: ["--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"],
    });
}

export function addressOf(fileOrUrl) {
    return /^[a-z]+:\/\//.test(fileOrUrl) ? fileOrUrl : pathToFileURL(resolve(fileOrUrl)).href;
}

/** What reaches beyond the right edge of the window, unless something around it scrolls. */
function widerThanTheWindow() {
    const width = document.documentElement.clientWidth;
    if (document.documentElement.scrollWidth <= width) return [];
    const scrolls = (element) => {
        for (let e = element.parentElement; e && e !== document.body; e = e.parentElement)
            if (getComputedStyle(e).overflowX !== "visible") return true;
        return false;
    };
    return [...document.body.querySelectorAll("*")]
        .filter((e) => e.getBoundingClientRect().right > width + 1 && !scrolls(e))
        .slice(0, 5)
        .map((e) => `<${e.tagName.toLowerCase()}> ${(e.textContent ?? "").trim().slice(0, 40)}`);
}

function deadLinksInside() {
    return [...document.querySelectorAll('a[href^="#"]')]
        .map((a) => decodeURIComponent(a.getAttribute("href").slice(1)))
        .filter((id) => id !== "" && !document.getElementById(id));
}

/** A window of one width in one mode, which looks at one page after the other. */
export async function openView(browser, width, mode) {
    const context = await browser.newContext({ viewport: { width, height: 900 }, colorScheme: mode, bypassCSP: true });
    const page = await context.newPage();
    let faults = [];
    page.on("console", (message) => {
        if (["error", "warning"].includes(message.type())) faults.push(`console: ${message.text()}`);
    });
    page.on("pageerror", (error) => faults.push(`script: ${error.message}`));
    page.on("requestfailed", (request) => faults.push(`not loaded: ${request.url()}`));

    /** The faults of a page, as sentences. */
    async function check(fileOrUrl, screenshots) {
        faults = [];
        await page.goto(addressOf(fileOrUrl), { waitUntil: "networkidle" });
        const wide = await page.evaluate(widerThanTheWindow);
        const [content, window] = await page.evaluate(() => [
            document.documentElement.scrollWidth, document.documentElement.clientWidth]);
        if (content > window)
            faults.push(`${content} pixels wide in a window of ${window}: ${wide.join("; ")}`);
        for (const id of await page.evaluate(deadLinksInside)) faults.push(`no place for the link #${id}`);
        await page.addScriptTag({ path: AXE });
        const result = await page.evaluate(() => globalThis.axe.run(document, {
            runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"], resultTypes: ["violations"] }));
        for (const rule of result.violations)
            for (const node of rule.nodes.slice(0, 5))
                faults.push(`${rule.id}: ${rule.help}: ${node.target.join(" ")}: ${node.failureSummary
                    .split("\n").slice(1).join(" ").trim()}`);
        if (screenshots) {
            mkdirSync(screenshots, { recursive: true });
            const name = basename(fileOrUrl.replace(/[?#].*/, "")).replace(/\.html?$/, "") || "page";
            await page.screenshot({ path: `${screenshots}/${name}-${width}-${mode}.png`, fullPage: true });
        }
        return faults;
    }
    return { check, close: () => context.close() };
}

async function main(args) {
    let screenshots;
    if (args[0] === "--screenshots") [, screenshots, ...args] = args;
    if (args.length === 0) {
        console.error("check_page.mjs [--screenshots FOLDER] FILE_OR_URL ...");
        return 2;
    }
    const missing = args.filter((a) => !a.includes("://") && !existsSync(a));
    if (missing.length > 0) {
        console.error(`no such file: ${missing.join(" ")}`);
        return 2;
    }
    let count = 0;
    const browser = await openBrowser();
    try {
        for (const width of WIDTHS)
            for (const mode of MODES) {
                const view = await openView(browser, width, mode);
                for (const page of args) {
                    const faults = await view.check(page, screenshots);
                    count += faults.length;
                    const verdict = faults.length === 0 ? "good" : `${faults.length} faults`;
                    console.log(`${page}, ${width} pixels, ${mode}: ${verdict}`);
                    for (const fault of faults) console.log(`    ${fault}`);
                }
                await view.close();
            }
    } finally {
        await browser.close();
    }
    return count === 0 ? 0 : 1;
}

if (process.argv[1] && resolve(process.argv[1]) === fileURLToPath(import.meta.url))
    process.exitCode = await main(process.argv.slice(2));
