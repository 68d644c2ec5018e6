// SPDX-License-Identifier: Apache-2.0

#pragma once

// Thin wrappers around pointers to XML nodes. They do not own the nodes and only declare their
// types.

#include "DeviceDiscover/export.h"

namespace tinyxml2 {
class XMLAttribute;
class XMLElement;
}  // namespace tinyxml2

// Points to an element; does not own it.
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

// Points to an attribute; does not own it.
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

// A placeholder for a document; points to nothing.
class DEVICEDISCOVER_API KzXMLDocument {
public:
    KzXMLDocument();
    KzXMLDocument(const KzXMLDocument& other);
    KzXMLDocument& operator=(const KzXMLDocument& other);

private:
    [[maybe_unused]] void* document;
};
static_assert(sizeof(KzXMLDocument) == sizeof(void*));
