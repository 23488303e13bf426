Text stand-in for the opaque model file of ostrivel_e7 (ISS).
