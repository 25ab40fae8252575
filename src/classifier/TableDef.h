// One object-data table of a class definition ("od_name" and its fields).
#pragma once

#include "classifier/FieldDef.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace veltarn {

// The fields of a table, shared by the copies of the table until one of them is changed: a large
// classifier gives a hundred thousand objects the same few tables, and a copy of the fields each
// took most of its memory. Reads as a vector; any non-const access first makes the list its own.
class FieldList {
public:
    using value_type = FieldDef;
    using iterator = std::vector<FieldDef>::iterator;
    using const_iterator = std::vector<FieldDef>::const_iterator;

    FieldList() = default;
    FieldList(std::initializer_list<FieldDef> fields) : FieldList(std::vector<FieldDef>(fields)) {}
    FieldList(std::vector<FieldDef> fields)
        : fields_(fields.empty() ? nullptr : std::make_shared<std::vector<FieldDef>>(std::move(fields))) {}

    std::size_t size() const { return fields_ ? fields_->size() : 0; }
    bool empty() const { return size() == 0; }
    const_iterator begin() const { return items().begin(); }
    const_iterator end() const { return items().end(); }
    iterator begin() { return own().begin(); }
    iterator end() { return own().end(); }
    const FieldDef& operator[](std::size_t i) const { return items()[i]; }
    FieldDef& operator[](std::size_t i) { return own()[i]; }
    const FieldDef& front() const { return items().front(); }
    const FieldDef& back() const { return items().back(); }
    FieldDef& back() { return own().back(); }

    void push_back(FieldDef field) { own().push_back(std::move(field)); }
    void pop_back() { own().pop_back(); }
    template <class It>
    iterator insert(const_iterator at, It first, It last) {
        const auto offset = at - begin();
        std::vector<FieldDef>& fields = own();
        return fields.insert(fields.begin() + offset, first, last);
    }
    iterator insert(const_iterator at, std::initializer_list<FieldDef> fields) {
        return insert(at, fields.begin(), fields.end());
    }

    bool operator==(const FieldList& other) const { return fields_ == other.fields_ || items() == other.items(); }

private:
    const std::vector<FieldDef>& items() const {
        static const std::vector<FieldDef> none;
        return fields_ ? *fields_ : none;
    }
    std::vector<FieldDef>& own() {
        if (!fields_) fields_ = std::make_shared<std::vector<FieldDef>>();
        else if (fields_.use_count() > 1) fields_ = std::make_shared<std::vector<FieldDef>>(*fields_);
        return *fields_;
    }

    std::shared_ptr<std::vector<FieldDef>> fields_;
};

struct TableDef {
    // At most 25 characters, none of the refused name characters (checked by the reader).
    std::wstring name;
    FieldList fields;

    // At least one field, exactly one key field, every other field valid.
    bool isWellFormed() const;

    // The field called `name` (without regard to case), or null.
    const FieldDef* findField(std::wstring_view name) const;

    // Same name (without regard to case) and the same fields in every detail.
    bool isIdenticalTo(const TableDef& other) const;

    // What a drawing stores of a table agrees: a table of another name always does; one of the
    // same name must have the same field names (without regard to case) in the same order with
    // the same types.
    bool isCompatibleWith(const TableDef& other) const;
};

}  // namespace veltarn
