#pragma once

// Shells around XML nodes, of which only their names are needed: the nodes belong to whoever made
// them.

#include "DeviceDiscover/export.h"

namespace tinyxml2 {
class XMLAttribute;
class XMLElement;
}  // namespace tinyxml2

// Points at an element; does not own it.
class DEVICEDISCOVER_API KzXmlElement {
public:
    KzXmlElement();
    explicit KzXmlElement(tinyxml2::XMLElement* node);
    KzXmlElement(const KzXmlElement& other);
    KzXmlElement& operator=(const KzXmlElement& other);
    ~KzXmlElement();

private:
    [[maybe_unused]] tinyxml2::XMLElement* element;
};
static_assert(sizeof(KzXmlElement) == sizeof(void*));

// Points at an attribute; does not own it.
class DEVICEDISCOVER_API KzXmlAttribute {
public:
    explicit KzXmlAttribute(tinyxml2::XMLAttribute* node);
    KzXmlAttribute(const KzXmlAttribute& other);
    KzXmlAttribute& operator=(const KzXmlAttribute& other);
    ~KzXmlAttribute();

private:
    [[maybe_unused]] tinyxml2::XMLAttribute* attribute;
};
static_assert(sizeof(KzXmlAttribute) == sizeof(void*));

// Stands for a document; points at nothing.
class DEVICEDISCOVER_API KzXMLDocument {
public:
    KzXMLDocument();
    KzXMLDocument(const KzXMLDocument& other);
    KzXMLDocument& operator=(const KzXMLDocument& other);

private:
    [[maybe_unused]] void* document;
};
static_assert(sizeof(KzXMLDocument) == sizeof(void*));
