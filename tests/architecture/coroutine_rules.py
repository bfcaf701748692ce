#!/usr/bin/env python3
"""Refuses three ways of writing coroutines that lead to memory errors.

1. A lambda or a braced temporary built inside a co_await expression: g++ 12 destroys some of them twice. Name the
   value first, then `co_await f(std::move(value))`. A braced value around a co_await is refused for the same reason.
2. A coroutine lambda with captures: the captures live in the lambda, which is gone at the first suspension.
3. A task that no scope owns: nobody would wait for its end before what it uses is destroyed. Only the join of the
   outermost scope is started by itself. The runtime, a folder named "tasks", is free to.

Usage: coroutine_rules.py SOURCE_FOLDER...
Before it reads anything it proves on planted examples that it finds each of them.
"""
import pathlib
import re
import sys

CLOSING = {"(": ")", "[": "]", "{": "}"}


def blank_out(text):
    """Comments, strings and characters become blanks, so that brackets in them do not count; lines stay."""
    pattern = re.compile(
        r'R"(?P<mark>[^()\\\s]{0,16})\(.*?\)(?P=mark)"'
        r'|//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<![0-9A-Za-z_])(?:u8|u|U|L)?\'(?:\\.|[^\'\\\n])+\'',
        re.DOTALL)
    return pattern.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), text)


def closing_index(text, opening):
    """The index of the bracket that closes the one at `opening`, or the end of the text."""
    depth = 0
    for index in range(opening, len(text)):
        if text[index] in "([{":
            depth += 1
        elif text[index] in ")]}":
            depth -= 1
            if depth == 0:
                return index
    return len(text)


def awaited_expression(text, start):
    """What a co_await at `start` stands in front of, up to the end of the statement or the enclosing bracket."""
    index = start
    while index < len(text):
        if text[index] in "([{":
            index = closing_index(text, index)
        elif text[index] in ")]};,":
            break
        index += 1
    return text[start:index]


def lambdas(text):
    """Start, capture list and body of each lambda. A subscript follows a value; a lambda does not."""
    for match in re.finditer(r"\[", text):
        before = text[:match.start()].rstrip()
        if before.endswith("[") or text[match.start() + 1:match.start() + 2] == "[":
            continue
        word = re.search(r"[A-Za-z_0-9]+$", before)
        if before.endswith((")", "]")) or word and word.group() not in ("return", "co_return", "co_await", "co_yield"):
            continue
        end = closing_index(text, match.start())
        rest = re.match(r"\s*(<[^;{}]*>\s*)?", text[end + 1:])
        index = end + 1 + rest.end()
        if text[index:index + 1] == "(":
            index = closing_index(text, index) + 1
        head = re.match(r"[^;{}()\[\],=]*(\([^;{}]*\))?[^;{}()\[\],=]*\{", text[index:])
        if not head:
            continue
        opening = index + head.end() - 1
        yield match.start(), text[match.start() + 1:end].strip(), text[opening:closing_index(text, opening) + 1]


def without_nested_lambdas(body):
    for start, _, inner in list(lambdas(body)):
        opening = body.index(inner, start)
        body = body[:opening] + re.sub(r"[^\n]", " ", inner) + body[opening + len(inner):]
    return body


def unowned_tasks(text):
    """Where a task is started by itself, unless it joins a scope."""
    for match in re.finditer(r"(?:(?<![\w.>:])|(?<!\w)(?:kestrin)?::)spawn\(", text):
        arguments = text[match.start():closing_index(text, match.end() - 1)]
        if not arguments.endswith(".join()"):
            yield match.start()


def offences(source, is_runtime=False):
    text = blank_out(source)
    found = []

    def tell(index, what):
        found.append((text.count("\n", 0, index) + 1, what))

    for match in re.finditer(r"(?<!operator )\bco_await\b", text):
        expression = awaited_expression(text, match.end())
        if next(lambdas(expression), None):
            tell(match.start(), "a lambda is built inside a co_await expression")
        elif "{" in expression:
            tell(match.start(), "a braced temporary is built inside a co_await expression")
    for match in re.finditer(r"[A-Za-z_0-9>]\s*\{\s*(?=[^{};]*\bco_await\b[^{};]*\})", text):
        if re.search(r"\b(do|else|try)\s*\{\s*$", match.group()):
            continue
        tell(match.start(), "a braced value is built from a co_await expression")
    for start, captures, body in lambdas(text):
        if captures and re.search(r"\bco_(await|return|yield)\b", without_nested_lambdas(body[1:-1])):
            tell(start, "a coroutine lambda has captures")
    if not is_runtime:
        for start in unowned_tasks(text):
            tell(start, "a task is started outside every scope")
    return sorted(found)


PLANTED = [
    "co_await offload(pool, [x] { return x; });",
    "auto r = co_await offload(pool,\n    [](std::stop_token token) -> int { return 1; });",
    "co_return co_await runOn(executor, work([&] { return 1; }));",
    "if (co_await check([=]() mutable noexcept { return true; })) return;",
    "co_await fetch(Request{url, 5});",
    "co_await fetch({.url = url});",
    "co_await Sleep{clock, when};",
    "Answer answer{co_await ask()};",
    "return Answer{1, co_await ask()};",
    "auto task = [this]() -> Task<> { co_await sleepUntil(clock, when); };",
    "auto task = [x]() -> Task<int> { co_return x; };",
    "run([&world](int seed) -> Task<int> { if (seed) { co_return 1; } co_return 2; });",
    "handle_ = spawn(executor, work());",
    "kestrin::spawn(executor, work());",
    "::spawn(executor, work());",
    "const TaskHandle<> task =\n    spawn(executor, wait(scope.join(), 1));",
    "auto task = [x = 1] { auto f = [] { return 1; }; co_return f(); };",
]
HARMLESS = [
    "auto work = [x] { return x; };\nTask<int> t = offload(pool, std::move(work));\nconst int r = co_await std::move(t);",
    "// co_await f([x] { return x; });\nconst char* text = \"co_await f([x] {})\";",
    "auto task = []() -> Task<int> { co_return 1; };",
    "co_await table[index].join();",
    "for (auto& child : children) { co_await child.join(); }",
    "if (co_await ready()) { const Range range{1, 2}; }",
    "try { co_await f(); } catch (...) { }",
    "Task<> f() { co_await g(); }",
    "auto make = [x] { auto task = []() -> Task<int> { co_return 1; }; return task(); };",
    "const int million = 1'000'000; auto f = [x] { return x; }; const char c = '{';",
    "Awaiter operator co_await() && { return Awaiter(frame_); }",
    "const TaskHandle<> end = spawn(executor, scope.join());",
    "tasks_.spawn(executor, work()); scope->spawn(executor, work()); respawn(1);",
    "[[nodiscard]] Task<int> f() { co_return values[0]; }",
]


def check_itself():
    for example in PLANTED:
        if not offences(example):
            sys.exit(f"the check is broken: it misses\n{example}")
    for example in HARMLESS:
        if offences(example):
            sys.exit(f"the check is broken: it refuses\n{example}\nas {offences(example)}")


def main():
    check_itself()
    files = [path for folder in sys.argv[1:] for path in sorted(pathlib.Path(folder).rglob("*"))
             if path.suffix in (".h", ".cpp")]
    if not files:
        sys.exit("no source file was found")
    count = 0
    for path in files:
        for line, what in offences(path.read_text(encoding="utf-8"), path.parent.name == "tasks"):
            print(f"{path}:{line}: {what}")
            count += 1
    print(f"{len(files)} files read, {count} offences")
    sys.exit(1 if count else 0)


main()
