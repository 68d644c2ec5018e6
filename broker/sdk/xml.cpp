// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/xml.h"

KzXmlElement::KzXmlElement() : element(nullptr) {}
KzXmlElement::KzXmlElement(tinyxml2::XMLElement* node) : element(node) {}
KzXmlElement::KzXmlElement(const KzXmlElement& other) = default;
KzXmlElement& KzXmlElement::operator=(const KzXmlElement& other) {
    if (this != &other) {
        element = other.element;
    }
    return *this;
}
KzXmlElement::~KzXmlElement() = default;

KzXmlAttribute::KzXmlAttribute(tinyxml2::XMLAttribute* node) : attribute(node) {}
KzXmlAttribute::KzXmlAttribute(const KzXmlAttribute& other) = default;
KzXmlAttribute& KzXmlAttribute::operator=(const KzXmlAttribute& other) = default;
KzXmlAttribute::~KzXmlAttribute() = default;

KzXMLDocument::KzXMLDocument() : document(nullptr) {}
KzXMLDocument::KzXMLDocument(const KzXMLDocument& other) = default;
KzXMLDocument& KzXMLDocument::operator=(const KzXMLDocument& other) = default;
