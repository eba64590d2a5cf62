# Called by the native code, in whose place the call of the exported function stands one frame up.
.nans_produced <- function(text, status, first, count) {
    warning(structure(class = c("orvanth_warning", "warning", "condition"),
                      list(message = gettext("NaNs produced", domain = "R"), call = sys.call(-1),
                           text = text, status = status, first = first, count = count)))
}

orvanth_last_error <- function() .Call(C_last_error)
