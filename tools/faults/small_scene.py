"""The small scene that faults are tried on: all products, the optional ones included, sidecars and a report; the
master's orbit stands in a record database."""

import pathlib
import subprocess
import sys

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPOSITORY / "demo"))

from scene_maker.record_database import move_orbit  # noqa: E402

BASIC_PRODUCTS = ("simu_phase", "rg_coreg", "az_coreg", "x_earth", "y_earth", "z_earth", "h_earth")
VIEWS = ("LAYOVER_SHADOW", "INCIDENCE", "LOCAL_INCIDENCE", "PERPENDICULAR_BASELINE", "HEIGHT_OF_AMBIGUITY")
PRODUCTS = [name + ".ras" for name in (*BASIC_PRODUCTS, *(key.lower() for key in VIEWS), "sight_e", "sight_n", "sight_u")]
REPORT = "report.json"
INPUTS = ["master.pool", "slave.pool", "dem.pool", "dem.ras", "scene.pcf", "db/orbit", "db/format.dat"]


def sidecar(product):
    return product + ".vrt"


def make_small_scene(folder):
    """24 x 20 pixels, terrain flat at 100 m."""
    subprocess.run([REPOSITORY / "demo" / "make_scene.py", folder, "--samples", "24", "--lines", "20", "--terrain", "flat",
                    "--low-m", "100", "--cover-low-m", "0", "--cover-high-m", "1000"], check=True, stdout=subprocess.DEVNULL)
    keys = {key: key.lower() + ".ras" for key in VIEWS} | {"LINE_OF_SIGHT": "sight.ras", "VRT_SIDECARS": "1", "REPORT": REPORT}
    with open(pathlib.Path(folder) / "scene.pcf", "a", encoding="ascii") as file:
        file.writelines("%s %s\n" % entry for entry in keys.items())
    move_orbit(pathlib.Path(folder) / "master.pool", "db")
    return pathlib.Path(folder)
