"""The algorithms of gridforge in the toolbox of QGIS."""


def classFactory(iface):
    """Called by QGIS, with the main window where there is one."""
    from .plugin import GridforgePlugin
    return GridforgePlugin(iface)
