"""What layers the operations want: the kinds of objects, the columns in their order, and the limits of the tool."""
from __future__ import annotations

from dataclasses import dataclass

POINT, LINE, REGION = "point", "line", "region"


@dataclass(frozen=True)
class Column:
    name: str
    width: int = 0  # characters of a text; 0 is a number
    default: str | float | None = None  # None: the source must have it
    optional: bool = False  # written only where it is asked for
    also: tuple[str, ...] = ()  # other names of a field that fits

    @property
    def is_text(self) -> bool:
        return self.width > 0


@dataclass(frozen=True)
class Form:
    """The layer that an operation wants in one role."""
    operation: str
    role: str
    kinds: tuple[str, ...]
    columns: tuple[Column, ...]
    most_vertices: int | None = None  # of an object, its closing vertex not counted
    most_objects: int | None = None
    named_outputs: bool = False  # the first column names an output, so it should not repeat
    extension: str = ""  # that the first column needs
    margins: tuple[float, float, float, float] = (0, 0, 0, 0)  # cells that must stay free: west, south, east, north


# What the page of each operation says of its layer.
_SECTION = (Column("Name", 250, "", also=("Source",)), Column("Distance", default=0.0), Column("Split_TF", 12, "T"),
            Column("Extract_TF", 12, "T"), Column("Ex_Method", 20, ""), Column("Buf_Method", 20, ""),
            Column("Buf_Dist", default=0.0))
_BRANCH = (Column("Name", 250), Column("Roughness", default=1.0, also=("n", "Mannings_n")), Column("UCS", 1, "T"),
           Column("Form_Loss", default=0.0), Column("Type", 4, "S"))
_RAIN = (Column("F1", default=1.0), Column("F2", default=1.0))
_NODE = (Column("ID", 50), Column("Type", 2, ""), Column("Flags", 8, ""),
         *(Column(f"Column_{n}", 20, "") for n in range(1, 7)),
         Column("Z_Incr", default=0.0), Column("Z_Max", default=0.0), Column("Skew", default=0.0))
NETWORK_VERTICES = 10000

FORMS = (
    Form("damages", "buildings", (POINT, REGION),
         (Column("Prop_Type", 100, also=("Type",)), Column("Prop_ID", 100, also=("ID",)),
          Column("FFL", also=("Floor", "Floor_Level")), Column("Multiplier", default=1.0)), margins=(2.001, 2.001, -1, -1)),
    Form("cp", "points", (POINT,), (Column("Observed", also=("Obs",)), Column("Label", 50, "", also=("Name",)),
                                    Column("Modelled", optional=True))),
    Form("lp", "lines", (LINE,), (Column("Label", 50, also=("Name",)),), named_outputs=True),
    Form("brkline", "lines", (LINE,), (Column("Z", default=0.0), Column("dZ", default=-1.0), Column("Width", default=0.0),
                                       Column("Options", 20, ""))),
    Form("na", "regions", (REGION,), _NODE, named_outputs=True, extension=".csv", margins=(1.001, 1.001, 0.001, 0.001)),
    Form("nbc", "sections", (LINE,), _SECTION, most_vertices=NETWORK_VERTICES, most_objects=10000, named_outputs=True),
    Form("nbc", "branches", (LINE,), _BRANCH, most_vertices=NETWORK_VERTICES, most_objects=2000),
    Form("nbc", "losses", (REGION,), (Column("Loss", also=("FLC", "Form_Loss")),)),
    Form("xs", "sections", (LINE,), _SECTION, most_vertices=NETWORK_VERTICES, most_objects=10000, named_outputs=True),
    Form("xs", "branches", (LINE,), _BRANCH, most_vertices=NETWORK_VERTICES, most_objects=2000),
    Form("rf", "points", (POINT,), (Column("Name", 100), *_RAIN)),
    Form("rf", "polygons", (REGION,), (Column("Name", 100, ""), *_RAIN)),
    Form("rf", "triangles", (REGION,), (Column("Name", 100, ""), *_RAIN), most_objects=1000),
    Form("trim", "regions", (REGION,), (Column("Name", 250),), most_vertices=98, most_objects=100, named_outputs=True,
         margins=(0.5, 0.5, 0.001, 0.001)),
)
OPERATIONS = tuple(dict.fromkeys(form.operation for form in FORMS))


def roles(operation: str) -> dict[str, Form]:
    return {form.role: form for form in FORMS if form.operation == operation}
