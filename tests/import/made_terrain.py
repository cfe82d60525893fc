"""The files that the documents' pages start from: two annotations, and a DEM of the ground that they see."""

import numpy as np
from osgeo import gdal, osr

import made_files


def made_dem(path, place):
    """A plane around the place, three arc seconds, heights above EGM96."""
    columns, rows, spacing = 700, 700, 3.0 / 3600.0
    made = gdal.GetDriverByName("GTiff").Create(str(path), columns, rows, 1, gdal.GDT_Int16)
    reference = osr.SpatialReference()
    reference.ImportFromEPSG(4326)
    made.SetProjection(reference.ExportToWkt())
    made.SetGeoTransform((place[0] - 0.5 * columns * spacing, spacing, 0, place[1] + 0.5 * rows * spacing, 0, -spacing))
    made.GetRasterBand(1).WriteArray(np.full((rows, columns), 500, np.int16))
    made.FlushCache()


def images_and_dem(folder, master, slave):
    for name, metres in ((master, 0.0), (slave, 150.0)):
        rows = made_files.vectors(orbit=made_files.moved(made_files.ORBIT, metres))
        (folder / name).write_text(made_files.annotation(rows, bursts=80, samples=25000))
    range_m = (5.644e-3 + 22200 / 6.434523812571428e7) * 299792458.0 / 2.0
    made_dem(folder / "bigtujunga.tif", made_files.ground(70.0 + 450 * made_files.LINE_INTERVAL_S, range_m, 500.0))
