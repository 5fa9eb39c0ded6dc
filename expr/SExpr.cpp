// Expression trees: printing, reversing, walking and ending them.
#include "expr/SExpr.h"

#include <typeinfo>
#include <utility>
#include <vector>

#include "record/iKST.h"

namespace {

/// The element as a list, null when it is none.
SExpr* asList(SExprElt* element) noexcept {
    return dynamic_cast<SExpr*>(element);
}

/// The element as a list that prints as lists do, null when it is none or has a print of its own.
const SExpr* asPlainList(const SExprElt* element) noexcept {
    return element && typeid(*element) == typeid(SExpr) ? static_cast<const SExpr*>(element) : nullptr;
}

}  // namespace

SExprElt::~SExprElt() = default;

// Lists within the list are put in front of what is left of it, and each cell is destroyed alone, so that
// neither length nor depth needs stack.
SExpr::~SExpr() {
    SExpr* left = std::exchange(m_next, nullptr);
    const auto destroyElement = [&left](SExprElt* element) {
        SExpr* const list = asList(element);
        if (!list) {
            delete element;
            return;
        }
        SExpr* last = list;
        while (last->m_next) last = last->m_next;
        last->m_next = std::exchange(left, list);
    };

    destroyElement(std::exchange(m_element, nullptr));
    while (left) {
        SExpr* const cell = std::exchange(left, left->m_next);
        cell->m_next = nullptr;
        destroyElement(std::exchange(cell->m_element, nullptr));
        delete cell;
    }
}

void SExpr::asString(GrowString& out) {
    std::vector<const SExpr*> outer;  // the cells whose elements are the lists being printed
    const SExpr* cell = this;
    out.append('(');
    while (true) {
        if (const SExpr* const list = asPlainList(cell->m_element)) {
            outer.push_back(cell);
            cell = list;
            out.append('(');
            continue;
        }
        if (cell->m_element) cell->m_element->asString(out);
        while (!cell->m_next) {
            out.append(')');
            if (outer.empty()) return;
            cell = outer.back();
            outer.pop_back();
        }
        out.append(' ');
        cell = cell->m_next;
    }
}

SExpr* SExpr::reverse() noexcept {
    SExpr* reversed = nullptr;
    for (SExpr* cell = this; cell;) {
        SExpr* const next = std::exchange(cell->m_next, reversed);
        reversed = std::exchange(cell, next);
    }
    return reversed;
}

SExprOperator::SExprOperator() = default;
SExprOperator::~SExprOperator() = default;

void SExprOperator::asString(GrowString& out) {
    out.append("op ");
}

SExprRef::~SExprRef() = default;

void SExprRef::asString(GrowString& out) {
    const iKST* const bound = source();
    const char* const name = bound ? bound->get_fieldname(m_field) : "voidref";
    if (name) out.append(name);
}
