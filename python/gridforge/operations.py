"""One function for each operation. Made by python/make_operations.py from the description for programs and the pages of the
operations: do not edit."""
# flake8: noqa
from __future__ import annotations

from typing import TYPE_CHECKING, Iterable, Literal, Optional, Union

from .arguments import Name
from .calls import How, Names, Number, call
from .record import Record

if TYPE_CHECKING:
    from typing_extensions import Unpack

__all__ = ["max", "min", "conv", "nc", "dif", "cd", "trans_m", "fe", "fuzzy", "count", "resize", "classify", "histogram", "cp",
           "lp", "brkline", "xs", "nbc", "na", "multiply", "xyz", "trim", "damages", "rf", "remap", "stat"]


def max(inputs: Names, *, src: bool = False, out: Optional[Name] = None, asc: bool = False, flt: bool = False,
        decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """Highest value of each cell over the input grids, with its source grid.

    Writes the highest (lowest) value of each cell over all grids, for instance the results of several storm durations, and
    which grid it came from.

    inputs   1 to 2000 grids; wildcards are taken
    src      no source grid and no legend
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/max-min.md
    """
    return call("max", {"-max": True}, inputs, {"-src": src, "-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def min(inputs: Names, *, src: bool = False, out: Optional[Name] = None, asc: bool = False, flt: bool = False,
        decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """Lowest value of each cell over the input grids, with its source grid.

    Writes the highest (lowest) value of each cell over all grids, for instance the results of several storm durations, and
    which grid it came from.

    inputs   1 to 2000 grids; wildcards are taken
    src      no source grid and no legend
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/max-min.md
    """
    return call("max", {"-min": True}, inputs, {"-src": src, "-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def conv(inputs: Names, *, out: Optional[Name] = None, asc: bool = False, flt: bool = False, decimal: Optional[int] = None,
         **how: Unpack[How]) -> Record:
    """Turns .asc grids into .flt and back.

    Turns each `.asc` into a `.flt` with its `.hdr`, and each `.flt` into an `.asc`, one after the other. The grids need not
    have anything in common: each keeps its own header, null and projection. The output lies beside the input and has its name,
    with the other extension.

    inputs   1 to 2000 grids; wildcards are taken
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/conv.md
    """
    return call("conv", {"-conv": True}, inputs, {"-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def nc(inputs: Names, *, out: Optional[Name] = None, nc_comp: Optional[int] = None, nc_shuffle: Optional[Literal[0, 1]] = None,
       nc_part: Optional[Literal[0, 1]] = None, **how: Unpack[How]) -> Record:
    """A series of grids in one NetCDF file, with their maximum.

    Writes the grids, in the order of the list, into one NetCDF-4 file as a time series, and adds the maximum over all of them.
    **Give `-nc_part1` to have each cell at its x and y**; see *Missing cells and edges* for the other way.

    inputs      1 to 2000 grids; wildcards are taken
    out         name of the main output
    nc_comp     NetCDF compression level
    nc_shuffle  NetCDF shuffle: 0 is off (0, 1; 1 without it)
    nc_part     NetCDF part switch: 0 is off (0, 1; 0 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/nc.md
    """
    return call("nc", {"-nc": True}, inputs, {"-out": out, "-nc_comp": nc_comp, "-nc_shuffle": nc_shuffle, "-nc_part": nc_part},
                how)


def dif(inputs: Names, *, out: Optional[Name] = None, nowetdry: bool = False, change: bool = False, asc: bool = False,
        flt: bool = False, decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """Difference of two grids, and where only one is active.

    Subtracts the second grid from the first, in single precision. A second output, the wet/dry grid, shows where only one of
    the two is active, that is not null.

    inputs    2 grids; wildcards are taken
    out       name of the main output
    nowetdry  no wet/dry test (with change)
    change    change where one of the cells is null
    asc       write grids as .asc
    flt       write grids as .flt
    decimal   decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/dif.md
    """
    return call("dif", {"-dif": True}, inputs, {"-out": out, "-nowetdry": nowetdry, "-change": change, "-asc": asc, "-flt": flt,
                "-decimal": decimal}, how)


def cd(inputs: Names, value: Number, *, out: Optional[Name] = None, asc: bool = False, flt: bool = False,
       decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """Cells that reach a cutoff, or a second grid's cells there.

    With one grid, keeps its cells of at least the value. With two, keeps the cells of the second where the first is at least
    the value: a depth grid filters a level grid. All other cells become null.

    inputs   1 to 2 grids; wildcards are taken
    value    keep only cells at or above the cutoff value (cell values)
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/cd.md
    """
    return call("cd", {"-cd": value}, inputs, {"-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def trans_m(inputs: Names, m: Optional[Number] = None, c: Optional[Number] = None, *, out: Optional[Name] = None,
            asc: bool = False, flt: bool = False, decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """Y = m x + c.

    Applies y = m x + c to each cell: a change of units or of datum. One of the two flags is enough; m is 1 and c is 0 without
    theirs. The output is `<grid>_trans`.

    inputs   1 grid; wildcards are taken
    m        transform y = mx + c: the multiplier
    c        transform y = mx + c: the constant (cell values)
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/transform.md
    """
    return call("trans_m", {"-trans_m": m, "-trans_c": c}, inputs, {"-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal},
                how)


def fe(inputs: Names, *, out: Optional[Name] = None, asc: bool = False, flt: bool = False, decimal: Optional[int] = None,
       **how: Unpack[How]) -> Record:
    """Mask of the wet cells.

    Writes a mask: 1 where a cell's magnitude is at least 0.0001, null elsewhere. The output is `<grid>_extent`. Only the first
    grid is read.

    inputs   1 grid; wildcards are taken
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/fe.md
    """
    return call("fe", {"-fe": True}, inputs, {"-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def fuzzy(inputs: Names, *, out: Optional[Name] = None, asc: bool = False, flt: bool = False, decimal: Optional[int] = None,
          **how: Unpack[How]) -> Record:
    """Fraction of grids in which a cell is active.

    Gives for each cell the fraction of the grids in which it is active. The output is `<first grid>_fuzzy`.

    inputs   1 to 2000 grids; wildcards are taken
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/fuzzy.md
    """
    return call("fuzzy", {"-fuzzy": True}, inputs, {"-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def count(inputs: Names, *, cd: Optional[Number] = None, **how: Unpack[How]) -> Record:
    """Number of wet cells.

    Counts the cells that are not null, with `-cd` those greater than the value. The count is shown and written to
    `<grid>_count.txt`. Only the first grid is read.

    inputs  1 grid; wildcards are taken
    cd      keep only cells at or above the cutoff value (cell values)

    Further keywords are those of gridforge.run. Page: docs/operations/count.md
    """
    return call("count", {"-count": True}, inputs, {"-cd": cd}, how)


def resize(inputs: Names, factor: int, *, out: Optional[Name] = None, rm_max: bool = False, rm_min: bool = False,
           rm_avg: bool = False, asc: bool = False, flt: bool = False, decimal: Optional[int] = None,
           **how: Unpack[How]) -> Record:
    """Coarser grid by average, minimum or maximum.

    Makes a coarser grid: each square of factor by factor cells becomes one cell. Squares start in the south-west corner, which
    stays in place; those along the north and the east may hold fewer cells. The output is `<grid>_resize<factor>`.

    inputs   1 grid; wildcards are taken
    factor   coarser grid by a whole factor (cells)
    out      name of the main output
    rm_max   resize to the maximum of each block
    rm_min   resize to the minimum of each block
    rm_avg   resize to the average of each block
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/resize.md
    """
    return call("resize", {"-resize": factor}, inputs, {"-out": out, "-rm_max": rm_max, "-rm_min": rm_min, "-rm_avg": rm_avg,
                "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def classify(inputs: Names, classes: Name, *, out: Optional[Name] = None, RGB: bool = False, asc: bool = False,
             flt: bool = False, grc: bool = False, decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """Class numbers in place of values.

    Replaces each cell by the number of its class.

    inputs   1 grid; wildcards are taken
    classes  classes of a grid by a class file
    out      name of the main output
    RGB      the class file carries colours
    asc      write grids as .asc
    flt      write grids as .flt
    grc      grid class output
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/classify.md
    """
    return call("classify", {"-classify": classes}, inputs, {"-out": out, "-RGB": RGB, "-asc": asc, "-flt": flt, "-grc": grc,
                "-decimal": decimal}, how)


def histogram(inputs: Names, bins: Name, **how: Unpack[How]) -> Record:
    """Counts of cells by bins.

    Counts the cells that are not null in bins given by upper limits, and writes `<grid>_histogram.csv`. The table of bins is
    that of classify, without colours.

    inputs  1 grid; wildcards are taken
    bins    number of cells in each bin

    Further keywords are those of gridforge.run. Page: docs/operations/histogram.md
    """
    return call("histogram", {"-histogram": bins}, inputs, {}, how)


def cp(inputs: Names, layer: Name, *, out: Optional[Name] = None, cpsd: Optional[Number] = None, cpmm: Optional[Number] = None,
       config: Optional[Name] = None, **how: Unpack[How]) -> Record:
    """Observed points against the nearest cells of a grid.

    Compares observed values, such as flood marks, with a modelled grid. For each point of the layer (`.mif` or `.shp`) it finds
    the nearest cell with a value and writes the modelled value and the difference: modelled minus observed.

    inputs  1 grid; wildcards are taken
    layer   calibration points of a layer against a grid
    out     name of the main output
    cpsd    search distance (map units; 1000.0 without it)
    cpmm    search distance of the minimum and maximum (map units; 100.0 without it)
    config  the config file

    Further keywords are those of gridforge.run. Page: docs/operations/cp.md
    """
    return call("cp", {"-cp": layer}, inputs, {"-out": out, "-cpsd": cpsd, "-cpmm": cpmm, "-config": config}, how)


def lp(inputs: Names, layer: Name, *, out: Optional[Name] = None, check: bool = False, cpsd: Optional[Number] = None,
       lpmd: Optional[Number] = None, **how: Unpack[How]) -> Record:
    """Long profiles, invert and banks, along lines.

    Takes long profiles of channels from a terrain grid. At vertices along each line of the layer (`.mif` or `.shp`) it searches
    at a right angle to the line: on both sides for the lowest cell, the invert (the bed of the channel), and on each side for
    the highest cell, the bank. Each line gives a table, named by the first attribute of the line, its label.

    inputs  1 grid; wildcards are taken
    layer   long profiles along the lines of a layer
    out     name of the main output
    check   extra check output
    cpsd    search distance (map units; 1000.0 without it)
    lpmd    distance between points (map units; 100.0 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/lp.md
    """
    return call("lp", {"-lp": layer}, inputs, {"-out": out, "-check": check, "-cpsd": cpsd, "-lpmd": lpmd}, how)


def brkline(inputs: Names, layer: Name, *, check: bool = False, **how: Unpack[How]) -> Record:
    """Lines with ground elevations at vertices along them.

    Turns the lines of a layer (`.mif` or `.shp`) into breaklines with ground elevations. Vertices are put along each line, and
    each takes an elevation from the grid as the attributes of the line say. The result is a layer of points and lines in the
    form of the model's height-modifying layers.

    inputs  1 grid; wildcards are taken
    layer   breakline elevations from a terrain grid
    check   extra check output

    Further keywords are those of gridforge.run. Page: docs/operations/brkline.md
    """
    return call("brkline", {"-brkline": layer}, inputs, {"-check": check}, how)


def xs(inputs: Names, layer: Name, *, branch: Optional[Name] = None, mat: Optional[Union[Name, Iterable[Name]]] = None,
       default_n: Optional[Number] = None, **how: Unpack[How]) -> Record:
    """Cross-sections from grids, and a network with -branch.

    Samples terrain grids along cross-section lines and writes a table for each line, with the `1d_xs` layer that names the
    table of each line. With a layer of channel centre lines (branches) it also cuts these at the sections and writes the
    `1d_nwk` layer of the network. The control file of `-nbc` does the same work with more choices; the attributes of the
    layers, and how sections meet and split branches, are described there.

    inputs     1 to 2000 grids; wildcards are taken
    layer      cross-sections of a layer from grids
    branch     the branch layer
    mat        a material grid; may be repeated
    default_n  material of points that no material grid gives one (-9999 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/xs.md
    """
    return call("xs", {"-xs": layer}, inputs, {"-branch": branch, "-mat": mat, "-default_n": default_n}, how)


def nbc(file: Name, **how: Unpack[How]) -> Record:
    """A 1D network and its cross-sections by a control file.

    Builds the layers of a 1D network from channel centre lines (branches) and cross-section lines.

    file  1D network by a control file

    Further keywords are those of gridforge.run. Page: docs/operations/nbc.md
    """
    return call("nbc", {"-nbc": file}, (), {}, how)


def na(inputs: Names, layer: Name, **how: Unpack[How]) -> Record:
    """Tables of height and area of the terrain inside regions.

    Makes storage tables of the nodes of a 1D network. For each region of the layer (`.mif` or `.shp`) the terrain cells inside
    it are counted by height, and a table gives the plan area of the ground at and below each height, as in the example.

    inputs  1 grid; wildcards are taken
    layer   nodal areas of a layer

    Further keywords are those of gridforge.run. Page: docs/operations/na.md
    """
    return call("na", {"-na": layer}, inputs, {}, how)


def multiply(inputs: Names, *, out: Optional[Name] = None, asc: bool = False, flt: bool = False, decimal: Optional[int] = None,
             **how: Unpack[How]) -> Record:
    """Product of two grids.

    Multiplies two grids cell by cell, in single precision. The output is `<first>_mlt_<second>`, with the folder of the second
    name in it: `d/a.asc` and `d/b.asc` give `d/a_mlt_d/b.asc`, whose folder `d/a_mlt_d` must be there. Use `-out` for grids in
    folders.

    inputs   2 grids; wildcards are taken
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/multiply.md
    """
    return call("multiply", {"-multiply": True}, inputs, {"-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def xyz(inputs: Names, *, out: Optional[Name] = None, asc: bool = False, flt: bool = False, decimal: Optional[int] = None,
        **how: Unpack[How]) -> Record:
    """A grid out of a text file of points.

    Turns a text file of points on a lattice into a grid. The spacing is not given: it is found from the points, and so is the
    extent. Each line of the file holds one point, `x y z`, its values separated by blanks, tabs or commas; the rest of the line
    is ignored. The order of the lines is free, except that the first point decides on the spacing.

    inputs   1 text files of points; wildcards are taken
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/xyz.md
    """
    return call("xyz", {"-xyz": True}, inputs, {"-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def trim(inputs: Names, layer: Name, *, out: Optional[Name] = None, asc: bool = False, flt: bool = False,
         decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """A grid for each region of a layer.

    Cuts each grid to each region of a layer (`.mif` or `.shp`). The output covers the window of the region's bounds; cells
    outside the region are null.

    inputs   1 to 2000 grids; wildcards are taken
    layer    a grid for each region of a layer
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/trim.md
    """
    return call("trim", {"-trim": layer}, inputs, {"-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)


def damages(file: Name, *, out: Optional[Name] = None, **how: Unpack[How]) -> Record:
    """What floods cost each building.

    Works out what each building of a layer loses in each of a list of floods. The control file (`.dmg`) names the layers of
    buildings, a depth-damage curve for each type of building, and the water level grids with their probabilities (AEP, annual
    exceedance probability: the chance that a flood is reached or exceeded in any year). Its commands and limits, the attributes
    of buildings and the curves are described in damage files.

    file  flood damages by a control file
    out   name of the main output

    Further keywords are those of gridforge.run. Page: docs/operations/damages.md
    """
    return call("damages", {"-damages": file}, (), {"-out": out}, how)


def rf(file: Name, *, decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """Rainfall at gauges or over areas to a grid for each time step.

    Turns rainfall depths at gauges into one grid for each time step and one of the total, as input of a model that takes rain
    on a grid.

    file     rainfall grids by a control file
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/rf.md
    """
    return call("rf", {"-rf": file}, (), {"-decimal": decimal}, how)


def remap(inputs: Names = (), *, wl: Name, dem: Name, asc: bool = False, flt: bool = False, idw_npt: Optional[int] = None,
          tin: bool = False, ext: Optional[Name] = None, fb: Optional[Number] = None, bd: Optional[Number] = None,
          decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """Water levels of a coarse model on a finer terrain.

    A flood model runs on coarse cells; the terrain is known on much finer ones. The remap takes the water levels of the model
    and writes level and depth on the cells of the terrain, wet where the ground lies below the water.

    inputs   0 to 1999 grids; wildcards are taken
    wl       the water level grid; becomes input 1
    dem      the terrain grid
    asc      write grids as .asc
    flt      write grids as .flt
    idw_npt  IDW with that number of points (points; 12 without it)
    tin      TIN
    ext      the extent grid
    fb       freeboard; sets IDW (cell values)
    bd       buffer distance; sets IDW (map units)
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/remap.md
    """
    return call("remap", {"-remap": True}, inputs, {"-wl": wl, "-dem": dem, "-asc": asc, "-flt": flt, "-idw_npt": idw_npt,
                "-tin": tin, "-ext": ext, "-fb": fb, "-bd": bd, "-decimal": decimal}, how)


def stat(inputs: Names, stat: Union[str, Iterable[str]], *, out: Optional[Name] = None, asc: bool = False, flt: bool = False,
         decimal: Optional[int] = None, **how: Unpack[How]) -> Record:
    """Minimum, maximum, mean, median, ranks and fraction wet over grids.

    Reads 2 to 10 grids, such as the storms of a design event, and writes statistics of each cell, each with a second grid (the
    source) that says which input the value came from. Outputs begin with the first grid's name or that of `-out`;
    `_Src_legend.csv` lists the inputs by number.

    inputs   2 to 10 grids; wildcards are taken
    stat     statistics of the input grids; flags add up (All, Mean, Median, Min, Max, Frac, Rank<n>, RankAll)
    out      name of the main output
    asc      write grids as .asc
    flt      write grids as .flt
    decimal  decimal places of .asc cells (3 without it)

    Further keywords are those of gridforge.run. Page: docs/operations/stat.md
    """
    return call("stat", {"-stat": stat}, inputs, {"-out": out, "-asc": asc, "-flt": flt, "-decimal": decimal}, how)
