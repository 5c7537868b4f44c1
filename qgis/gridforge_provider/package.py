"""The Python package of the tool: the copy that comes in the plugin, so that no other has to be installed."""
from .gridforge import (Description, DescriptionError, Flag, InputRule, Operation, OutputRule, Progress, Record,  # noqa: F401
                        RunError, ToolNotFound, WrongUse, find_tool, load_description, run)
from .gridforge import styles as styles_module  # noqa: F401
from .gridforge.families import COMPANIONS, PROJECTION  # noqa: F401
from .gridforge.moving import Move, move_all  # noqa: F401
