"""The master's orbit as a record database in place of the lists in its pool: the file "orbit" and its definition."""

import pathlib

from . import pool_file

ITEMS = ("x", "y", "z", "vx", "vy", "vz")
KEYS = {"orbit_representation": "orbit_mdb_double_utc", "orbit_interpolation": "spline"}


def move_orbit(pool, database):
    """@param database  its folder, as the pool names it; the pool's own folder is where relative ones begin"""
    folder = pathlib.Path(pool).parent / database
    folder.mkdir()
    entries = pool_file.read(pool)
    (folder / "format.dat").write_text("time : utc\n" + "".join(name + " : double\n" for name in ITEMS))
    with open(folder / "orbit", "w", encoding="ascii") as file:
        for i, time in enumerate(entries["state_vector_times"]):
            values = [entries["state_vector_" + what][3 * i + axis] for what in ("positions", "velocities") for axis in range(3)]
            file.write("time : %s\n  time : %s\n" % (time, time) + "".join("  %s : %.17g\n" % pair for pair in zip(ITEMS, values)))
    kept = [line for line in pathlib.Path(pool).read_text(encoding="ascii").splitlines() if line.split(" ")[0] not in KEYS]
    kept += ['%s STR "%s"' % entry for entry in (*KEYS.items(), ("mdb_orbit_data_file", "%s/orbit" % database))]
    pathlib.Path(pool).write_text("\n".join(kept) + "\n", encoding="ascii")
