// check_page.mjs tells of every fault in faults.html.
import { fileURLToPath } from "node:url";
import { openBrowser, openView } from "./check_page.mjs";

const EXPECTED = ["console: an error on the console", "script: Cannot read properties of null", "not loaded: ",
                  "pixels wide in a window of 420: <div> too wide", "no place for the link #nowhere", "color-contrast: ",
                  "image-alt: "];

const browser = await openBrowser();
const view = await openView(browser, 420, "light");
const faults = await view.check(fileURLToPath(new URL("faults.html", import.meta.url)));
await browser.close();
const silent = EXPECTED.filter((text) => !faults.some((fault) => fault.includes(text)));
for (const text of silent) console.error(`check_page.mjs does not tell: ${text}`);
process.exitCode = silent.length === 0 ? 0 : 1;
