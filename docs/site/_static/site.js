// A part that scrolls sideways can be reached with the keyboard.
document.addEventListener("DOMContentLoaded", function () {
  document.querySelectorAll(".table-wrapper, div.math, div.highlight pre").forEach(function (box) {
    box.setAttribute("tabindex", "0");
  });
});
