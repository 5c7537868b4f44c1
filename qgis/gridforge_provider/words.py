"""Words for the dialogs that the description of the command line does not have. Tests hold the lists against it."""
from __future__ import annotations

UNITS = {"cell values": "unit of the cells", "decimals": "", "points": ""}
GROUP_LABELS = {"gridFormat": "Format of the grids", "resizeMethod": "Value of a coarse cell"}
FLAG_LABELS = {
    "-max": "Highest value", "-min": "Lowest value", "-stat": "Statistics", "-cd": "Cutoff", "-resize": "Factor",
    "-trans_m": "Multiplier m", "-trans_c": "Constant c", "-asc": ".asc", "-flt": ".flt",
    "-src": "Leave out source grid and legend",
    "-classify": "Table of classes", "-histogram": "Table of bins", "-RGB": "The table of classes has colours",
    "-grc": "Write a classified .asc for other programs", "-rm_max": "Maximum", "-rm_min": "Minimum", "-rm_avg": "Average",
    "-cp": "Calibration points", "-lp": "Lines of the profiles", "-brkline": "Lines", "-xs": "Cross-sections",
    "-branch": "Branches",
    "-mat": "Grids of materials", "-default_n": "Material where no grid has one", "-na": "Regions of the nodes",
    "-trim": "Regions",
    "-nbc": "Control file of the network", "-damages": "Control file of the damages", "-rf": "Control file of the rainfall",
    "-check": "Also a check layer", "-config": "Table of symbols", "-cpmm": "Search distance of lowest and highest value",
    "-nc_comp": "Compression level", "-nc_shuffle": "Shuffle bytes before compression", "-nc_part": "Part switch",
    "-change": "A dry cell counts as zero", "-nowetdry": "Only cells active in both", "-idw_npt": "IDW: number of points",
    "-fb": "IDW: freeboard", "-bd": "IDW: buffer distance", "-ext": "IDW: extent grid", "-tin": "TIN, whatever is given above",
}

# The group of each operation in the toolbox.
GROUPS = {
    "Cells of grids": ("max", "stat", "fuzzy", "dif", "multiply", "trans_m", "cd", "fe", "count", "histogram", "classify"),
    "Shape and format of grids": ("conv", "resize", "trim", "xyz", "remap"),
    "Sampling along layers": ("cp", "lp", "brkline", "na"),
    "Networks": ("xs", "nbc"),
    "Damages": ("damages",),
    "Rainfall": ("rf",),
    "NetCDF": ("nc",),
}

# By operation and what follows the name in the rule of the output: its label, and the kind of style. Where the cells are what
# those of the inputs are, the style is "input".
OUTPUT_WORDS = {
    ("max", ""): ("Values", "input"), ("max", "_src"): ("Source grid", "source"),
    ("max", "_src_legend.csv"): ("Legend of the source grid", ""),
    ("nc", ".nc"): ("Series", ""),
    ("dif", ""): ("Difference", "difference"), ("dif", "_wd"): ("Where only one grid is active", "wet_dry"),
    ("cd", ""): ("Cells that reach the cutoff", "input"),
    ("trans_m", ""): ("Transformed grid", "input"),
    ("fe", ""): ("Extent", "wet_dry"),
    ("fuzzy", ""): ("Fraction of the grids", ""),
    ("count", "_count.txt"): ("Count", ""),
    ("resize", ""): ("Coarser grid", "input"),
    ("classify", ""): ("Classes", ""),
    ("histogram", "_histogram.csv"): ("Histogram", ""),
    ("cp", ""): ("Points with modelled values", ""), ("cp", "_Cn"): ("Connections to cells", ""), ("cp", ".csv"): ("Table", ""),
    ("lp", "_LP_check"): ("Check layer", ""),
    ("brkline", "_brkline"): ("Breaklines", ""), ("brkline", "_check"): ("Check layer", ""),
    ("multiply", ""): ("Product", ""),
    ("xyz", ""): ("Grid", "input"),
    ("damages", ""): ("Buildings with damages", ""), ("damages", ".csv"): ("Table of damages", ""),
    ("remap", "_remap_h"): ("Level", "level"), ("remap", "_remap_d"): ("Depth", "depth"),
    ("remap", "_h_IDW"): ("Extended level", "level"),
    ("stat", "_Min_Val"): ("Minimum", "input"), ("stat", "_Min_Src"): ("Source of the minimum", "source"),
    ("stat", "_Max_Val"): ("Maximum", "input"), ("stat", "_Max_Src"): ("Source of the maximum", "source"),
    ("stat", "_Mean_Val"): ("Mean", "input"), ("stat", "_Mean_Src"): ("Source of the mean", "source"),
    ("stat", "_Median_Val"): ("Median", "input"), ("stat", "_Median_Src"): ("Source of the median", "source"),
    ("stat", "_Frac_Wet"): ("Fraction of the grids", ""), ("stat", "_Src_legend.csv"): ("Legend of the source grids", ""),
    ("rf", "_total"): ("Total", ""), ("rf", "_index.csv"): ("Times and names", ""), ("rf", ".nc"): ("Series", ""),
    ("rf", "rf_index"): ("Hyetograph of each cell", ""), ("rf", "rf_fac"): ("Factor of each cell", ""),
    ("rf", "rf_giit"): ("Triangle of each cell", ""),
    ("nbc", ".nbc_check"): ("Check layer", ""),
}
