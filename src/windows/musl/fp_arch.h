/* For the sources of musl: nothing of the floating-point unit is special. */
