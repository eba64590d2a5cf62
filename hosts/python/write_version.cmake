file(WRITE ${FILE} "__version__ = \"${VERSION}\"\n")
