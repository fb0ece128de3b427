// Geometry: points, vectors, matrices, planes, coordinate systems and tolerances
// (docs/geometry.md).
#pragma once

#include <zo/config.h>

#include <zo/geometry/co_system.h>
#include <zo/geometry/format.h>
#include <zo/geometry/matrix.h>
#include <zo/geometry/plane.h>
#include <zo/geometry/point.h>
#include <zo/geometry/status.h>
#include <zo/geometry/tol.h>
#include <zo/geometry/vector.h>
