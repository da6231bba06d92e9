// Attribute bags to and from the attributes of an XML element.
//
// Every attribute of the element is kept: one the bag does not know is
// added as text, so attributes written by a newer release survive a load
// and a save. Booleans are written as "1" and "0"; the lines of
// FldTagValues are joined with "|" in the file.
#pragma once

#include <pugixml.hpp>

#include "core/properties.h"
#include "platform/xml_text_writer.h"

namespace bw {

// Reading a file is no change: the values are assigned without marking the
// project dirty.
// `isProjectRoot`: the element is the file's root `Project`, whose unknown
// attributes take their type from the custom setting file.
void LoadBagFromElement(AGProperties& bag, const pugi::xml_node& element, bool isProjectRoot);
// An attribute's value as the file holds it: Booleans as "1" and "0", the
// lines of FldTagValues joined with "|".
std::string BagFileText(const AttributeDef& def, const Variant& value);

// The attributes of the element the writer has just opened.
void WriteBagAttributes(const AGProperties& bag, XmlTextWriter& out);

}  // namespace bw
