// From the text of a statement to its code.
#include "lang/builtin.h"
#include "lang/compile.h"
#include "lang/nodes.h"
#include "lang/source.h"
#include "text/ascii.h"

namespace tpu {

namespace {

// A subscript lies between the first "{" and the final "}".
Target compile_target(std::string_view text, SymbolTable& symbols) {
    Target target;
    std::size_t brace = text.find('{');
    if (brace != std::string_view::npos && text.ends_with('}')) {
        std::string_view subscript = text.substr(brace + 1, text.size() - brace - 2);
        target.subscript = compile_expression(subscript, symbols);
        if (!target.subscript) target.subscript = std::make_unique<Constant>(Value());
        text = text.substr(0, brace);
    }
    target.symbol = &symbols.intern(ascii::upper(ascii::trim(text)));
    return target;
}

bool sums_onto_target(const StmtCode& code) {
    if (code.target.subscript) return false;
    const auto* sum = dynamic_cast<const Sum*>(code.expression.get());
    const auto* first = sum ? dynamic_cast<const Variable*>(&sum->first.node()) : nullptr;
    return first && &first->symbol == code.target.symbol;
}

void compile_assignment(StmtCode& code, std::string_view target, std::string_view expression,
                        SymbolTable& symbols) {
    code.target = compile_target(ascii::trim(target), symbols);
    code.expression = compile_expression(expression, symbols);
    if (!code.expression) code.expression = std::make_unique<Constant>(Value());
    code.in_place = sums_onto_target(code);
}

Declared compile_declared(std::string_view piece, SymbolTable& symbols) {
    Declared declared;
    std::size_t assigned = source::find_assignment(piece);
    if (assigned != std::string_view::npos) {
        declared.value = compile_expression(piece.substr(assigned + 2), symbols);
        piece = piece.substr(0, assigned);
    }
    declared.symbol = &symbols.intern(ascii::upper(ascii::trim(piece)));
    return declared;
}

void compile_declaration(StmtCode& code, std::string_view names, SymbolTable& symbols) {
    for (std::string_view piece : split_top_args(names)) {
        if (ascii::trim(piece).empty()) continue;
        code.declared.push_back(compile_declared(piece, symbols));
    }
}

void read_arguments(CallSite& site, std::string_view text) {
    std::string_view inside = ascii::trim(between_parentheses(text).value_or(""));
    if (inside.empty()) return;
    site.source = std::make_shared<const std::string>(inside);
    site.text = *site.source;
    for (std::string_view piece : split_top_args(site.text)) {
        site.arguments.push_back({ascii::trim(piece), nullptr});
    }
}

// A procedure is called by its name alone, which may be of any shape, or by a name of
// letters with arguments behind it.
Symbol* called_procedure(std::string_view text, std::string_view name, SymbolTable& symbols) {
    if (text.find('(') == std::string_view::npos) return &symbols.intern(ascii::upper(text));
    std::string_view rest = ascii::trim(text.substr(name.size()));
    return rest.starts_with('(') ? &symbols.intern(ascii::upper(name)) : nullptr;
}

std::shared_ptr<StmtCode> new_code(const SymbolTable& symbols) {
    auto code = std::make_shared<StmtCode>();
    code->table = symbols.number();
    return code;
}

}  // namespace

std::shared_ptr<const StmtCode> compile_plain(std::string_view text, SymbolTable& symbols) {
    auto code = new_code(symbols);
    std::string_view name = source::leading_word(text);
    std::string_view rest = text.substr(name.size());
    const Builtin* row = symbols.builtins().find(ascii::upper(name));
    bool declares = row && row->declares != Declares::nothing && !ascii::trim(rest).empty() &&
                    ascii::is_space(rest.front());
    if (declares) {
        code->builtin = row;
        compile_declaration(*code, rest, symbols);
        return code;
    }
    std::size_t assigned = source::find_assignment(text);
    if (assigned != std::string_view::npos) {
        compile_assignment(*code, text.substr(0, assigned), text.substr(assigned + 2), symbols);
        return code;
    }
    code->builtin = row;
    read_arguments(code->site, rest);
    if (!row) code->procedure = called_procedure(text, name, symbols);
    return code;
}

std::shared_ptr<const StmtCode> compile_statement(const Stmt& stmt, SymbolTable& symbols) {
    if (stmt.kind == Stmt::kPlain) return compile_plain(ascii::trim(stmt.text), symbols);
    auto code = new_code(symbols);
    if (stmt.kind == Stmt::kAssignment) {
        compile_assignment(*code, stmt.text, stmt.expression, symbols);
    } else {
        code->expression = compile_expression(stmt.text, symbols);
    }
    return code;
}

}  // namespace tpu
