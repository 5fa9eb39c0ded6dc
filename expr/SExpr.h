// Expression trees: lists of operators, field references and further lists.
//
// A list is the chain of cells from its first cell on. Each cell owns its element and the next cell, so that
// destroying the first cell destroys the whole list. Lists may be of any length and nest to any depth.
//
// Thread-safety: none; a tree belongs to one thread at a time.
#pragma once

#include <optional>

#include "support/Export.h"
#include "support/GrowString.h"
#include "support/LibraryObject.h"
#include "support/LifeWatch.h"

class iKST;

/// What a cell may hold.
class KESTA_API SExprElt : public LibraryObject {
 public:
    SExprElt() = default;
    SExprElt(const SExprElt&) = delete;
    SExprElt& operator=(const SExprElt&) = delete;
    virtual ~SExprElt();

    /// Appends the element's text to `out`.
    virtual void asString(GrowString& out) = 0;
};

/// One cell of a list, and, as an element, the list that begins with it.
class KESTA_API SExpr : public SExprElt {
 public:
    /// Takes ownership of both, which come from operator new and belong to no other cell. A null `next` ends
    /// the list; a null element has no text.
    explicit SExpr(SExprElt* element, SExpr* next = nullptr) noexcept : m_element(element), m_next(next) {}

    /// Destroys the element, then the rest of the list.
    ~SExpr() override;

    /// "(", the elements' texts separated by single spaces, ")".
    void asString(GrowString& out) override;

    /// Reverses the chain that starts at this cell in place and returns its new first cell. This cell becomes
    /// the last.
    SExpr* reverse() noexcept;

    /// What the cell holds; null when it holds nothing. The cell owns it.
    SExprElt* element() const noexcept { return m_element; }

    /// The next cell, which this one owns; null for the last.
    SExpr* next() const noexcept { return m_next; }

 private:
    SExprElt* m_element;
    SExpr* m_next;
};

/// An operator, of which there is only one kind.
class KESTA_API SExprOperator : public SExprElt {
 public:
    SExprOperator();
    ~SExprOperator() override;

    /// "op ", with its trailing space, whatever the operator.
    void asString(GrowString& out) override;
};

/// A reference to a field of a record source.
class KESTA_API SExprRef : public SExprElt {
 public:
    /// The source is not owned and must outlive the reference. Null makes an unbound reference.
    SExprRef(unsigned field, iKST* source) noexcept : m_field(field), m_source(source) {}

    /// A reference that is unbound once its source has gone.
    SExprRef(unsigned field, iKST* source, const LifeWatch& sourceLives) noexcept
        : m_field(field), m_source(source), m_sourceLives(sourceLives) {}
    ~SExprRef() override;

    /// The field's name in the source; "voidref" when unbound.
    void asString(GrowString& out) override;

    /// The field's number in the source.
    unsigned field() const noexcept { return m_field; }

    /// Null when unbound.
    iKST* source() const noexcept { return !m_sourceLives || *m_sourceLives ? m_source : nullptr; }

 private:
    unsigned m_field;
    iKST* m_source;
    std::optional<LifeWatch> m_sourceLives;  // none where the source is known to outlive the reference
};

/// Walks the cells of a list, which must outlive it. Begins before the first cell.
class KESTA_API SExprIterator {
 public:
    /// Null is the empty list.
    explicit SExprIterator(SExpr* list) noexcept : m_first(list) {}

    /// Steps to the next cell: past the last one, to no cell, and from no cell to the first.
    SExprIterator& operator++() noexcept {
        m_current = m_current ? m_current->next() : m_first;
        return *this;
    }

    /// The cell it stands on, or null.
    SExpr* cell() const noexcept { return m_current; }

 private:
    SExpr* m_first;
    SExpr* m_current = nullptr;
};
