"""Writes complete synthetic scenes for velmora: orbits, terrain, pools and control file from one seed.

Not part of velmora and sharing no code with it: the geometry here is closed-form orbits and Newton solutions in numpy,
so that a scene's truth (scene.SCENE) can also judge the program's products.
"""
