// GrowString: a text that grows.
#include "support/GrowString.h"

GrowString::GrowString() = default;
GrowString::~GrowString() = default;

void GrowString::append(const char* text) {
    m_text += text;
}

void GrowString::append(char character) {
    m_text += character;
}
