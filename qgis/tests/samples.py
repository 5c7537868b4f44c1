"""Small inputs of all kinds, and control files, in a folder."""
from pathlib import Path

HEAD = 'Version 300\nCharset "WindowsLatin1"\nDelimiter ","\nCoordSys NonEarth Units "m" Bounds (0, 0) (100, 100)\n'
LINE = "Pline 2\n2 4.4\n8 4.4\n    Pen (1,2,0)\n"
SQUARE = "Region 1\n5\n1.5 1.5\n4.5 1.5\n4.5 4.5\n1.5 4.5\n1.5 1.5\n    Pen (1,2,0)\n"
POINT = "Point 4.4 4.4\n    Symbol (35,0,12)\n"
PRJ = ('PROJCS["UTM",GEOGCS["WGS84",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],PRIMEM["Greenwich",0.0],'
       'UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],PARAMETER["False_Easting",500000.0],'
       'PARAMETER["False_Northing",10000000.0],PARAMETER["Central_Meridian",153.0],PARAMETER["Scale_Factor",0.9996],'
       'PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]]\n')


def grid(add=0, size=9):
    """Cells 11 to 99: digits of row and column, the north row first; the south-west cell is null."""
    rows = [[10 * row + column + add for column in range(1, size + 1)] for row in range(size, 0, -1)]
    rows[-1][0] = -9999
    text = "\n".join(" ".join(map(str, row)) for row in rows)
    return f"ncols {size}\nnrows {size}\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n{text}\n"


def layer(columns, objects):
    return HEAD + f"Columns {len(columns)}\n" + "".join(f"  {column}\n" for column in columns) + "Data\n\n" + objects


def files():
    """Their texts by name."""
    letters = [f"{letter} Char(20)" for letter in "CDEFGH"]
    cut = ["Name Char(50)", "Distance Float", "Split_TF Char(12)", "Extract_TF Char(12)", "Ex_Method Char(20)",
           "Buf_Method Char(20)", "Buf_Dist Float"]
    return {
        "a.asc": grid(), "a.prj": PRJ, "b.asc": grid(1), "c.asc": grid(-2), "small.asc": grid(size=4),
        "classes.csv": "Limit,Name\n20,low\n50,middle\n80,high\n",
        "points.mif": layer(["Obs Float", "Mark Char(20)"], POINT), "points.mid": '55,"m"\n',
        "lines.mif": layer(["Label Char(20)"], LINE), "lines.mid": '"bed"\n',
        "breaks.mif": layer(["Z Float", "dZ Float", "Width Float", "Options Char(20)"], LINE), "breaks.mid": '7,3,0,"road"\n',
        "regions.mif": layer(["Name Char(20)"], SQUARE), "regions.mid": '"park"\n',
        "nodes.mif": layer(["ID Char(50)", "A Char(2)", "B Char(8)", *letters, "I Float", "J Float", "Skew Float"], SQUARE),
        "nodes.mid": '"pond.csv","S","Node","a","b","c","d","e","f",1.5,2.5,0\n',
        "1d_cut_t.mif": layer(cut, "Line 5 2 5 7\n"), "1d_cut_t.mid": '"bank",0,"T","T","","",0\n',
        "1d_br_t.mif": layer(["Name Char(30)", "n Float", "UCS Char(1)", "Form_Loss Float"], "Pline 3\n1 4\n4 4\n8 4\n"),
        "1d_br_t.mid": '"Main",0.03,"T",0.6\n',
        "net.nbc": "Read GIS Branch == 1d_br_t.mif\nRead GIS XS == 1d_cut_t.mif\nSet XS dx == 1\nRead Grid Z == a.asc\n"
                   "Write Check == On\n",
        "floods.dmg": "Read GIS Building == houses.mif\nRead Curve House == house.csv\nRead Result % 1 == a.asc\n",
        "house.csv": "Depth,Damage\n0,0\n100,10000\n",
        "houses.mif": layer(["Prop_Type Char(20)", "Prop_ID Char(20)", "FFL Float", "Multiplier Float"], POINT + SQUARE),
        "houses.mid": '"House","1",40,1\n"House","2",20,1\n',
        "storm.rfc": "RF GRID Cell Size == 10\nRF GRID Size (X,Y) == 20, 30\nRainfall Hyetograph p == p.csv\n"
                     "Rainfall Hyetograph q == q.csv\nRF Interpolation Method == IDW\nRead GIS RF Points == gauges.mif\n",
        "p.csv": "Time,Depth\n0,2\n0.5,4\n", "q.csv": "Time,Depth\n0,10\n0.5,20\n",
        "gauges.mif": layer(["Name Char(40)", "F1 Float", "F2 Float"],
                            "Point 5 5\n    Symbol (35,0,12)\nPoint 25 15\n    Symbol (35,0,12)\n"),
        "gauges.mid": '"p",1,1\n"q",1,1\n',
        "cloud.xyz": "".join(f"{x} {y} {x + y}\n" for y in (1, 2, 3) for x in (1, 2, 3)),
    }


def write_samples(folder: Path) -> None:
    folder.mkdir(parents=True, exist_ok=True)
    for name, text in files().items():
        (folder / name).write_text(text, encoding="ascii")
