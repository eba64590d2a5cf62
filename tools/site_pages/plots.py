"""The plots of the pages."""


def of_page(name):
    return ()


def make_all(library, folder):
    return {}
