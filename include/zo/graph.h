// Graphs: object graphs written in the dot language, for looking at them.
#pragma once

#include <zo/config.h>

#include <zo/graph/dotty_elements.h>
#include <zo/graph/dotty_graph.h>
#include <zo/graph/dotty_map.h>
