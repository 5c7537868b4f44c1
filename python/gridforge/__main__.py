"""python3 -m gridforge: the same as gridforge-run."""
import sys

from .command import main

if __name__ == "__main__":
    sys.exit(main())
