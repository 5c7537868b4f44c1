"""Runs the tool through its package, and shows the run in the toolbox."""
from __future__ import annotations

from pathlib import Path

from qgis.core import QgsProcessingException, QgsProcessingFeedback

from .package import Progress, Record, RunError, run


CANCELLED = "The run was cancelled."
MOST = 99.0  # per cent before the end: inputs may be read twice


class Cancel:
    """The button of the dialog, as the package asks for it."""

    def __init__(self, feedback: QgsProcessingFeedback) -> None:
        self._feedback = feedback

    def is_set(self) -> bool:
        return self._feedback.isCanceled()


def run_tool(tool: Path, arguments: list[str], folder: Path, feedback: QgsProcessingFeedback, shows_progress: bool) -> Record:
    """A run in `folder`. One that does not finish raises the tool's message."""
    def say(line: str) -> None:
        if line.lstrip().startswith(("WARNING", "ERROR")):
            feedback.pushWarning(line)
        else:
            feedback.pushConsoleInfo(line)

    def show(progress: Progress) -> None:
        if shows_progress and progress.fraction is not None:
            feedback.setProgress(min(100 * progress.fraction, MOST))

    try:
        return run(arguments, folder=folder, sums=False, environment={"GRIDFORGE": str(tool)}, on_line=say, on_progress=show,
                   cancel=Cancel(feedback))
    except RunError as error:
        if feedback.isCanceled():
            raise QgsProcessingException(CANCELLED) from error
        raise QgsProcessingException(str(error)) from error
