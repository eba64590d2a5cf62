// What the theme's pages lack for keyboards and screen readers.
document.addEventListener("DOMContentLoaded", function () {
  function set(selector, name, value) {
    document.querySelectorAll(selector).forEach(function (element) { element.setAttribute(name, value); });
  }
  // A part that scrolls sideways can be reached with the keyboard.
  set(".table-wrapper, div.math, div.highlight pre", "tabindex", "0");
  set(".sidebar-tree .caption[role=heading]", "aria-level", "2");
  set(".sidebar-drawer", "aria-label", "All pages");
  set(".toc-drawer", "aria-label", "This page");
  // The page of the search has no heading.
  var text = document.querySelector("[role=main]");
  if (text && !document.querySelector("h1")) {
    var heading = document.createElement("h1");
    heading.textContent = "Search";
    text.prepend(heading);
  }
  // Doubles of the buttons in the header, for the mouse.
  set(".overlay", "aria-hidden", "true");
  set(".content-icon-container", "role", "navigation");
  set(".content-icon-container", "aria-label", "Tools of this page");
});
