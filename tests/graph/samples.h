// Graphs that exercise every form of the text, each with its exact text. One test compares the
// texts, another one gives them to Graphviz.
#pragma once

#include <zo/graph.h>

#include <string>
#include <vector>

struct Sample {
  std::wstring name;  // also the file's, without extension
  ZoDottyGraph graph;
  std::string text;  // UTF-8
};

std::vector<Sample> samples();

// The text of a graph with this caption line (or none) and this body, which begins at the nodes.
std::string dotText(const std::string& captionLine, const std::string& body);
