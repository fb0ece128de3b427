// XML and JSON: documents, and variants as either.
#pragma once

#include <zo/config.h>

#include <zo/xml/json.h>
#include <zo/xml/xml_class.h>
#include <zo/xml/xml_error.h>
#include <zo/xml/xml_node.h>
#include <zo/xml/xml_parameters.h>
#include <zo/xml/xml_results.h>
