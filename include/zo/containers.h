// Containers: typed templates over untyped engines. docs/containers.md says which to take.
#pragma once

#include <zo/config.h>

#include <zo/text/containers/array.h>
#include <zo/text/containers/array_iterator.h>
#include <zo/text/containers/hash_dict.h>
#include <zo/text/containers/hash_dict_iterator.h>
#include <zo/text/containers/list.h>
#include <zo/text/containers/list_iterator.h>
#include <zo/text/containers/tree.h>
