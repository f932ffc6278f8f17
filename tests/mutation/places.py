"""Finds the places of a source file that can be mutated and writes the file with all its mutants.

Every mutant is an expression that asks mutant_switch.h whether it is chosen, so that one build holds
them all. Code that the compiler evaluates (constant expressions, template arguments, extents of
arrays, case labels) cannot ask at run time and is left alone.
"""

import re
from collections import Counter
from dataclasses import dataclass

from clang.cindex import CursorKind, Index, TranslationUnit, TypeKind

COMPILED_IN_ADVANCE = {
    CursorKind.STATIC_ASSERT, CursorKind.PARM_DECL, CursorKind.TYPE_REF, CursorKind.TEMPLATE_REF,
    CursorKind.NAMESPACE_REF, CursorKind.CXX_UNARY_EXPR, CursorKind.ENUM_DECL,
    CursorKind.TEMPLATE_NON_TYPE_PARAMETER, CursorKind.TYPE_ALIAS_DECL, CursorKind.USING_DECLARATION,
}
FUNCTIONS = {
    CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
    CursorKind.FUNCTION_TEMPLATE,
}
CLASSES = {CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL, CursorKind.CLASS_TEMPLATE}
VARIABLES = {CursorKind.VAR_DECL, CursorKind.FIELD_DECL}
INTEGERS = {TypeKind.INT, TypeKind.UINT, TypeKind.LONG, TypeKind.ULONG, TypeKind.LONGLONG,
            TypeKind.ULONGLONG, TypeKind.SHORT, TypeKind.USHORT}
NUMBERS = INTEGERS | {TypeKind.DOUBLE, TypeKind.FLOAT, TypeKind.POINTER}
STATEMENTS_THAT_CAN_GO = {
    CursorKind.CALL_EXPR, CursorKind.BINARY_OPERATOR, CursorKind.UNARY_OPERATOR,
    CursorKind.COMPOUND_ASSIGNMENT_OPERATOR, CursorKind.CSTYLE_CAST_EXPR, CursorKind.UNEXPOSED_EXPR,
    CursorKind.CONTINUE_STMT, CursorKind.BREAK_STMT,
}

ORDERINGS = {"<": "less", "<=": "lessOrEqual", ">": "greater", ">=": "greaterOrEqual"}
ARITHMETIC = {"+": "plus", "-": "minus", "*": "times", "/": "dividedBy"}
RESULTS = {"kOk": "kFailed", "kFailed": "kOk"}


@dataclass
class Mutant:
    """One small change. What it is called has no line numbers, so that it outlives other changes."""
    number: int
    file: str
    function: str
    change: str
    source: str
    occurrence: int = 1
    line: int = 0  # for people who look at it now

    @property
    def name(self):
        suffix = f" (occurrence {self.occurrence})" if self.occurrence > 1 else ""
        return f"{self.file}: {self.function}: {self.change}: {self.source}{suffix}"


class Edits:
    """Insertions around ranges of a text and replacements in it. Ranges nest; the range that is
    added first is the outer one."""

    def __init__(self, text):
        self.text = text
        self.before, self.after, self.replaced = {}, {}, {}

    def wrap(self, start, end, before, after):
        self.before.setdefault(start, []).append(before)
        self.after.setdefault(end, []).insert(0, after)

    def replace(self, start, end, text):
        self.replaced[start] = (end, text)

    def applied(self):
        parts, position = [], 0
        for offset in sorted({*self.before, *self.after, *self.replaced}):
            parts.append(self.text[position:offset])
            parts += self.after.get(offset, [])
            parts += self.before.get(offset, [])
            position = offset
            if offset in self.replaced:
                position, text = self.replaced[offset]
                parts.append(text)
        return "".join([*parts, self.text[position:]])


class File:
    """One source file, its mutants and its text with all of them."""

    def __init__(self, root, path, arguments, first_number):
        self.path = path
        self.absolute = str(root / path)
        self.text = (root / path).read_bytes().decode("ascii")
        self.edits = Edits(self.text)
        self.mutants = []
        self.next_number = first_number
        self.function = ""
        self.names = Counter()
        self.seen = set()
        self.ancestors = []
        unit = Index.create().parse(
            self.absolute, args=["-x", "c++", *arguments],
            options=TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
        errors = [str(problem) for problem in unit.diagnostics if problem.severity >= 3]
        if errors:
            raise RuntimeError("\n".join(errors))
        self.macros = [self.range_of(cursor) for cursor in unit.cursor.get_children()
                       if cursor.kind == CursorKind.MACRO_INSTANTIATION and self.is_here(cursor)]
        for cursor in unit.cursor.get_children():
            if self.is_here(cursor) and not cursor.kind.is_preprocessing():
                self.visit(cursor)

    def with_mutants(self):
        include = '#include "mutant_switch.h"\n'
        text = self.edits.applied()
        once = "#pragma once\n"
        return text.replace(once, once + include, 1) if once in text else include + text

    # The tree

    def is_here(self, cursor):
        file = cursor.location.file
        return file is not None and file.name == self.absolute

    @staticmethod
    def range_of(cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def source_of(self, cursor):
        start, end = self.range_of(cursor)
        return self.text[start:end]

    def is_in_macro(self, cursor):
        start, end = self.range_of(cursor)
        return any(first <= start and end <= last for first, last in self.macros)

    def visit(self, cursor):
        if cursor.kind in COMPILED_IN_ADVANCE or self.is_in_macro(cursor):
            return
        if cursor.kind in FUNCTIONS | VARIABLES and self.is_constant_expression(cursor):
            return
        outer = self.function
        if cursor.kind in FUNCTIONS | CLASSES:
            self.function = self.qualified(cursor)
        self.mutate(cursor)
        self.ancestors.append(cursor)
        for child in self.children_at_run_time(cursor):
            self.visit(child)
        self.ancestors.pop()
        self.function = outer

    def is_constant_expression(self, cursor):
        head = re.split(r"[={(]", self.source_of(cursor))[0]
        return re.search(r"\bconstexpr\b", head) is not None

    @staticmethod
    def qualified(cursor):
        owner = cursor.semantic_parent
        name = re.sub(r"<.*", "", cursor.spelling) if "operator" not in cursor.spelling else cursor.spelling
        return f"{owner.spelling}::{name}" if owner.kind in CLASSES else name

    def children_at_run_time(self, cursor):
        children = list(cursor.get_children())
        if cursor.kind in VARIABLES:
            # What stands before the name is the type; brackets behind it hold an extent.
            children = [child for child in children if child.extent.start.offset >= cursor.location.offset]
            if cursor.type.kind == TypeKind.CONSTANTARRAY:
                children = [child for child in children if child.kind == CursorKind.INIT_LIST_EXPR]
        if cursor.kind == CursorKind.CASE_STMT:
            children = children[1:]
        return children

    # The mutants

    def add(self, cursor, change, source=None):
        text = " ".join((source or self.source_of(cursor)).split())
        key = (self.function, change, text)
        self.names[key] += 1
        self.mutants.append(Mutant(self.next_number, self.path, self.function, change, text,
                                   self.names[key], cursor.location.line))
        self.next_number += 1
        return self.mutants[-1].number

    def wrap(self, cursor, before, after):
        self.edits.wrap(*self.range_of(cursor), before, after)

    def mutate(self, cursor):
        key = (self.range_of(cursor), cursor.kind)
        if key in self.seen:
            return
        self.seen.add(key)
        if self.ancestors and self.ancestors[-1].kind == CursorKind.COMPOUND_STMT:
            self.drop_statement(cursor)
        steps = {
            CursorKind.IF_STMT: self.change_check,
            CursorKind.CONDITIONAL_OPERATOR: self.swap_choice,
            CursorKind.BINARY_OPERATOR: self.change_operator,
            CursorKind.COMPOUND_ASSIGNMENT_OPERATOR: self.change_operand,
            CursorKind.UNARY_OPERATOR: self.drop_negation,
            CursorKind.CALL_EXPR: self.change_call,
            CursorKind.INTEGER_LITERAL: self.change_number,
            CursorKind.DECL_REF_EXPR: self.change_constant,
            CursorKind.CXX_BOOL_LITERAL_EXPR: self.change_truth,
        }
        if cursor.kind in steps:
            steps[cursor.kind](cursor)

    def drop_statement(self, statement):
        text = self.source_of(statement)
        if statement.kind not in STATEMENTS_THAT_CAN_GO or re.match(r"throw\b|\(void\)keepOpen", text):
            return
        n = self.add(statement, "dropped statement")
        self.wrap(statement, f"if (!mutation::mutant({n})) ", "")

    def change_check(self, statement):
        condition = next(statement.get_children())
        if not condition.kind.is_expression():
            return  # it declares a variable
        text = self.source_of(condition)
        never = self.add(condition, "check never true", text)
        always = self.add(condition, "check always true", text)
        self.wrap(condition, "(static_cast<bool>(",
                  f") || mutation::mutant({always})) && !mutation::mutant({never})")

    def swap_choice(self, choice):
        condition = next(choice.get_children())
        if self.is_turned_anyway(condition):
            return
        n = self.add(choice, "choice swapped")
        self.wrap(condition, "(static_cast<bool>(", f") != mutation::mutant({n}))")

    def is_turned_anyway(self, condition):
        while condition.kind in (CursorKind.UNEXPOSED_EXPR, CursorKind.PAREN_EXPR):
            condition = next(condition.get_children())
        return condition.kind in (CursorKind.BINARY_OPERATOR, CursorKind.UNARY_OPERATOR)

    def change_operator(self, expression):
        left, right = list(expression.get_children())
        operator = self.operator_between(left, right)
        if operator in ("&&", "||"):
            self.change_logic(expression, left, right, operator)
        elif operator in ("==", "!=", *ORDERINGS):
            self.change_comparison(expression, left, right, operator)
        elif operator in ARITHMETIC and self.is_number(left) and self.is_number(right):
            if not self.is_difference_of_pointers(left, right) and not self.is_in_braces():
                n = self.add(expression, f"{operator} replaced")
                self.call_instead(expression, left, right, f"mutation::{ARITHMETIC[operator]}({n}, ")

    def operator_between(self, left, right):
        return self.text[left.extent.end.offset:right.extent.start.offset].strip()

    @staticmethod
    def is_number(expression):
        return expression.type.get_canonical().kind in NUMBERS

    @staticmethod
    def is_difference_of_pointers(left, right):
        return all(operand.type.get_canonical().kind == TypeKind.POINTER for operand in (left, right))

    def call_instead(self, expression, left, right, call):
        self.wrap(expression, call, ")")
        self.edits.replace(left.extent.end.offset, right.extent.start.offset, ", ")

    def change_comparison(self, expression, left, right, operator):
        text = self.source_of(expression)
        turned = self.add(expression, "comparison turned", text)
        self.wrap(expression, "((", f") != mutation::mutant({turned}))")
        if operator in ORDERINGS:
            n = self.add(expression, "boundary moved", text)
            self.call_instead(expression, left, right, f"mutation::{ORDERINGS[operator]}({n}, ")

    def change_logic(self, expression, left, right, operator):
        """Swapping `and` with `or` is negating both operands and the result."""
        text = self.source_of(expression)
        n = self.add(expression, "and swapped with or", text)
        self.wrap(expression, "((", f") != mutation::mutant({n}))")
        for operand in (left, right):
            self.wrap(operand, "(static_cast<bool>(", f") != mutation::mutant({n}))")
            if self.is_chain(operand, operator):
                continue
            dropped = self.add(operand, "operand dropped", f"{self.source_of(operand)}")
            self.wrap(operand, "(static_cast<bool>(",
                      f") {'||' if operator == '&&' else '&& !'}mutation::mutant({dropped}))")

    def is_chain(self, operand, operator):
        """The operands of a chain are those of its links."""
        return operand.kind == CursorKind.BINARY_OPERATOR and self.operator_between(
            *operand.get_children()) == operator

    def change_operand(self, assignment):
        left, right = list(assignment.get_children())
        if self.operator_between(left, right) in ("+=", "-="):
            n = self.add(assignment, "sign of the operand turned")
            self.wrap(right, f"mutation::operand({n}, ", ")")

    def drop_negation(self, expression):
        operand = next(expression.get_children())
        if not self.source_of(expression).startswith("!") or self.is_turned_anyway(operand):
            return
        n = self.add(expression, "negation dropped")
        self.wrap(expression, "((", f") != mutation::mutant({n}))")

    def change_call(self, call):
        if call.spelling in ("operator==", "operator!="):
            operands = list(call.get_arguments())
            if len(operands) == 2 and self.operator_between(*operands) in ("==", "!="):
                self.change_comparison(call, *operands, self.operator_between(*operands))
        elif self.source_of(call).startswith(("keepOpen(", "orvml_io::keepOpen(")):
            n = self.add(call, "closed too early")
            self.wrap(call, f"mutation::closed({n}, ", ")")
        else:
            self.leak_identifier(call)

    def leak_identifier(self, construction):
        """An identifier that goes from HDF5 to its owner."""
        arguments = list(construction.get_arguments())
        if not re.search(r"OwnedId|^(File|Group|Dataset|Dataspace|Datatype|Attribute|PropertyList)Id$",
                         construction.spelling) or len(arguments) != 1:
            return
        if self.source_of(arguments[0]).startswith("H5"):
            n = self.add(construction, "never closed")
            self.wrap(arguments[0], f"mutation::neverClosed({n}, ", ")")

    def change_number(self, number):
        if self.is_in_braces() or not re.fullmatch(r"\d+[uUlL]*", self.source_of(number)):
            return
        if self.only_makes_room():
            return
        self.add_one(number)

    def only_makes_room(self):
        """Room reserved ahead decides about speed, never about results."""
        return any(cursor.kind == CursorKind.CALL_EXPR and cursor.spelling == "reserve"
                   for cursor in self.ancestors)

    def add_one(self, number):
        n = self.add(number, "off by one", f"{self.source_of(number)} in {self.context_of(number)}")
        self.wrap(number, "(", f" + mutation::one({n}))")

    def change_constant(self, reference):
        name = self.source_of(reference).rpartition("::")[2]
        declaration = reference.referenced
        if name in RESULTS:
            n = self.add(reference, "result swapped", self.context_of(reference))
            swapped = self.source_of(reference)[:-len(name)] + RESULTS[name]
            self.wrap(reference, f"(mutation::mutant({n}) ? {swapped} : ", ")")
        elif (declaration is not None and declaration.kind == CursorKind.VAR_DECL
              and reference.type.get_canonical().kind in INTEGERS
              and self.is_constant_expression_of(declaration) and not self.is_in_braces()):
            self.add_one(reference)

    def context_of(self, cursor):
        """The rest of the line: a value alone says nothing."""
        start, end = self.range_of(cursor)
        first = self.text.rfind("\n", 0, start) + 1
        last = self.text.find("\n", end)
        return self.text[first:last].split("//")[0]

    @staticmethod
    def is_constant_expression_of(declaration):
        return any(token.spelling == "constexpr" for token in declaration.get_tokens())

    def is_in_braces(self):
        """Braces take no narrowing conversion, and only constants do not narrow."""
        explicit = [cursor for cursor in self.ancestors if cursor.kind != CursorKind.UNEXPOSED_EXPR]
        return bool(explicit) and explicit[-1].kind in (CursorKind.INIT_LIST_EXPR,
                                                        CursorKind.CXX_FUNCTIONAL_CAST_EXPR)

    def change_truth(self, literal):
        if self.is_in_braces():
            return
        n = self.add(literal, "truth turned", self.context_of(literal))
        self.wrap(literal, "(", f" != mutation::mutant({n}))")
