#include "docx/docx_math.h"

#include "docx/zip_package.h"

#include <QDomDocument>
#include <QRegularExpression>
#include <QXmlStreamReader>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <QXmlInputSource>
#include <QXmlSimpleReader>
#pragma GCC diagnostic pop

namespace {

const QString kMathNs = QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");
const QString kWordNs = QStringLiteral("http://schemas.openxmlformats.org/wordprocessingml/2006/main");
const QString kDocumentPart = QStringLiteral("word/document.xml");

// Parts with paragraphs, in reading order: body (tables and text boxes inside it), headers,
// footers, footnotes, endnotes.
QStringList textParts(const KZipPackage& package)
{
    QStringList parts{kDocumentPart};
    for (const char* pattern : {"^word/header[0-9]*\\.xml$", "^word/footer[0-9]*\\.xml$"}) {
        const QRegularExpression re(QString::fromLatin1(pattern));
        QStringList found = package.names().filter(re);
        std::sort(found.begin(), found.end(), [](const QString& a, const QString& b) {
            return a.size() != b.size() ? a.size() < b.size() : a < b;
        });
        parts << found;
    }
    for (const char* name : {"word/footnotes.xml", "word/endnotes.xml"}) {
        if (package.contains(QString::fromLatin1(name)))
            parts << QString::fromLatin1(name);
    }
    return parts;
}

bool openDocument(KZipPackage& package, const QString& path, QString& error)
{
    if (!package.open(path)) {
        error = package.error();
        return false;
    }
    if (!package.contains(kDocumentPart)) {
        error = QStringLiteral("not a Word document: no word/document.xml");
        return false;
    }
    return true;
}

// Adds the m: and w: namespace declarations to the start tag of a cut-out element.
QString withNamespaces(const QString& element)
{
    const int nameEnd = element.indexOf(QRegularExpression(QStringLiteral("[\\s/>]")));
    const QString startTag = element.left(element.indexOf(QLatin1Char('>')));
    QString decls;
    if (!startTag.contains(QLatin1String("xmlns:m=")))
        decls += QStringLiteral(" xmlns:m=\"%1\"").arg(kMathNs);
    if (!startTag.contains(QLatin1String("xmlns:w=")))
        decls += QStringLiteral(" xmlns:w=\"%1\"").arg(kWordNs);
    return element.left(nameEnd) + decls + element.mid(nameEnd);
}

bool scanPart(const QString& part, const QString& xml, const KDocxConverters& conv,
              std::vector<KDocxEquation>& out, QString& error)
{
    QXmlStreamReader reader(xml);
    int paragraph = 0;
    int fallbackDepth = 0;
    qint64 tokenStart = 0;
    while (!reader.atEnd()) {
        tokenStart = reader.characterOffset();
        reader.readNext();
        const QStringRef name = reader.qualifiedName();
        if (reader.isEndElement() && name == QLatin1String("mc:Fallback")) {
            --fallbackDepth;
            continue;
        }
        if (!reader.isStartElement())
            continue;
        if (name == QLatin1String("w:p")) {
            ++paragraph;
        } else if (name == QLatin1String("mc:Fallback")) {
            // The same content as the chosen alternative, kept for older readers.
            ++fallbackDepth;
        } else if (name == QLatin1String("m:oMathPara") || name == QLatin1String("m:oMath")) {
            const bool display = name == QLatin1String("m:oMathPara");
            reader.skipCurrentElement();
            if (reader.hasError())
                break;
            if (fallbackDepth > 0)
                continue;
            const QString element =
                withNamespaces(xml.mid(int(tokenStart), int(reader.characterOffset() - tokenStart)));
            const QString paraText =
                display ? element
                        : QStringLiteral("<m:oMathPara xmlns:m=\"%1\" xmlns:w=\"%2\">%3</m:oMathPara>")
                              .arg(kMathNs, kWordNs, element);
            out.push_back({part, paragraph, display, conv.ommlToLatex(paraText), element});
        }
    }
    if (reader.hasError()) {
        error = QStringLiteral("broken XML in %1 at line %2: %3")
                    .arg(part)
                    .arg(reader.lineNumber())
                    .arg(reader.errorString());
        return false;
    }
    return true;
}

// A formula found in a paragraph's text: [start, end) with the delimiters, the LaTeX inside.
struct FoundFormula {
    int start = 0;
    int end = 0;
    bool display = false;
    QString latex;
};

std::vector<FoundFormula> findFormulas(const QString& text)
{
    std::vector<FoundFormula> found;
    auto add = [&](int start, int open, const QString& close, bool display) {
        const int close_at = text.indexOf(close, start + open);
        if (close_at < 0)
            return start + 1;
        const QString latex = text.mid(start + open, close_at - start - open);
        if (latex.trimmed().isEmpty())
            return close_at + close.size();
        found.push_back({start, close_at + int(close.size()), display, latex});
        return close_at + int(close.size());
    };
    int i = 0;
    while (i < text.size()) {
        const QChar c = text.at(i);
        const QChar next = i + 1 < text.size() ? text.at(i + 1) : QChar();
        if (c == QLatin1Char('\\')) {
            if (next == QLatin1Char('('))
                i = add(i, 2, QStringLiteral("\\)"), false);
            else if (next == QLatin1Char('['))
                i = add(i, 2, QStringLiteral("\\]"), true);
            else
                i += 2; // \$ and other escapes stay text
        } else if (c == QLatin1Char('$')) {
            if (next == QLatin1Char('$')) {
                i = add(i, 2, QStringLiteral("$$"), true);
            } else {
                // The closing dollar is the next one not escaped by a backslash.
                int j = i + 1;
                while (j < text.size() &&
                       !(text.at(j) == QLatin1Char('$') && text.at(j - 1) != QLatin1Char('\\')))
                    ++j;
                if (j >= text.size() || j == i + 1) {
                    ++i;
                    continue;
                }
                found.push_back({i, j + 1, false, text.mid(i + 1, j - i - 1)});
                i = j + 1;
            }
        } else {
            ++i;
        }
    }
    return found;
}

// A run that holds only text (and its properties) may take part in a formula.
bool isTextRun(const QDomElement& run)
{
    if (run.tagName() != QLatin1String("w:r"))
        return false;
    bool hasText = false;
    for (QDomElement child = run.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        if (child.tagName() == QLatin1String("w:t"))
            hasText = true;
        else if (child.tagName() != QLatin1String("w:rPr"))
            return false;
    }
    return hasText;
}

QString runText(const QDomElement& run)
{
    QString text;
    for (QDomElement t = run.firstChildElement(QStringLiteral("w:t")); !t.isNull();
         t = t.nextSiblingElement(QStringLiteral("w:t")))
        text += t.text();
    return text;
}

QDomElement textRunLike(QDomDocument& doc, const QDomElement& run, const QString& text)
{
    QDomElement copy = run.cloneNode(true).toElement();
    for (QDomElement t = copy.firstChildElement(QStringLiteral("w:t")); !t.isNull();) {
        QDomElement nextT = t.nextSiblingElement(QStringLiteral("w:t"));
        copy.removeChild(t);
        t = nextT;
    }
    QDomElement t = doc.createElement(QStringLiteral("w:t"));
    t.setAttribute(QStringLiteral("xml:space"), QStringLiteral("preserve"));
    t.appendChild(doc.createTextNode(text));
    copy.appendChild(t);
    return copy;
}

QDomElement mathElement(QDomDocument& doc, const QString& omml, bool display)
{
    QDomDocument math;
    if (!math.setContent(omml))
        return {};
    QDomElement root = math.documentElement();
    if (!display) {
        root = root.firstChildElement(QStringLiteral("m:oMath"));
        if (root.isNull())
            return {};
    }
    QDomElement imported = doc.importNode(root, true).toElement();
    imported.setAttribute(QStringLiteral("xmlns:m"), kMathNs);
    return imported;
}

struct ParagraphContext {
    QString part;
    int paragraph = 0;
    bool dryRun = false;
};

// Converts the formulas of one stretch of adjacent text runs; returns whether it changed.
bool convertStretch(QDomDocument& doc, const std::vector<QDomElement>& runs, const ParagraphContext& at,
                    const KDocxConverters& conv, std::vector<KDocxChange>& changes)
{
    QString text;
    std::vector<int> starts;
    for (const QDomElement& run : runs) {
        starts.push_back(text.size());
        text += runText(run);
    }
    starts.push_back(text.size());
    std::vector<std::pair<FoundFormula, QDomElement>> accepted;
    for (const FoundFormula& f : findFormulas(text)) {
        KDocxChange change{at.part, at.paragraph, f.display, f.latex, conv.errors(f.latex)};
        QDomElement math;
        if (change.errors.isEmpty()) {
            math = mathElement(doc, conv.latexToOmml(f.latex), f.display);
            if (math.isNull())
                change.errors << QStringLiteral("the formula produced no equation");
        }
        changes.push_back(change);
        if (change.errors.isEmpty())
            accepted.push_back({f, math});
    }
    if (accepted.empty() || at.dryRun)
        return false;
    QDomNode parent = runs.front().parentNode();
    const QDomNode anchor = runs.front();
    auto emitText = [&](int from, int to) {
        for (size_t i = 0; i < runs.size(); ++i) {
            const int a = std::max(from, starts[i]);
            const int b = std::min(to, starts[i + 1]);
            if (a < b)
                parent.insertBefore(textRunLike(doc, runs[i], text.mid(a, b - a)), anchor);
        }
    };
    int pos = 0;
    for (const auto& [formula, math] : accepted) {
        emitText(pos, formula.start);
        parent.insertBefore(math, anchor);
        pos = formula.end;
    }
    emitText(pos, text.size());
    for (const QDomElement& run : runs)
        parent.removeChild(run);
    return true;
}

bool convertParagraphs(QDomDocument& doc, const QString& part, bool dryRun, const KDocxConverters& conv,
                       std::vector<KDocxChange>& changes)
{
    bool changed = false;
    const QDomNodeList paragraphs = doc.elementsByTagName(QStringLiteral("w:p"));
    std::vector<QDomElement> list;
    for (int i = 0; i < paragraphs.size(); ++i)
        list.push_back(paragraphs.at(i).toElement());
    for (size_t p = 0; p < list.size(); ++p) {
        const ParagraphContext at{part, int(p) + 1, dryRun};
        std::vector<QDomElement> stretch;
        auto flush = [&]() {
            if (!stretch.empty())
                changed = convertStretch(doc, stretch, at, conv, changes) || changed;
            stretch.clear();
        };
        std::vector<QDomElement> children;
        for (QDomElement c = list[p].firstChildElement(); !c.isNull(); c = c.nextSiblingElement())
            children.push_back(c);
        for (const QDomElement& child : children) {
            if (isTextRun(child))
                stretch.push_back(child);
            else if (child.tagName() != QLatin1String("w:proofErr"))
                flush();
        }
        flush();
    }
    return changed;
}

// Reads XML keeping whitespace-only text, which is content inside w:t.
bool parseKeepingSpace(QDomDocument& doc, const QByteArray& bytes, QString& message)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    QXmlInputSource source;
    source.setData(bytes);
    QXmlSimpleReader reader;
    // Qualified names as written, as the rest of this folder matches them.
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespaces"), false);
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespace-prefixes"), true);
    int line = 0;
    const bool ok = doc.setContent(&source, &reader, &message, &line);
#pragma GCC diagnostic pop
    if (!ok)
        message = QStringLiteral("line %1: %2").arg(line).arg(message);
    return ok;
}

} // namespace

bool listEquations(const QString& path, const KDocxConverters& conv, std::vector<KDocxEquation>& out,
                   QString& error)
{
    KZipPackage package;
    if (!openDocument(package, path, error))
        return false;
    for (const QString& part : textParts(package)) {
        QByteArray bytes;
        if (!package.read(part, bytes)) {
            error = package.error();
            return false;
        }
        if (!scanPart(part, QString::fromUtf8(bytes), conv, out, error))
            return false;
    }
    return true;
}

bool convertLatexInDocument(const QString& in, const QString& out, bool dryRun, const KDocxConverters& conv,
                            std::vector<KDocxChange>& changes, QString& error)
{
    KZipPackage package;
    if (!openDocument(package, in, error))
        return false;
    QMap<QString, QByteArray> replaced;
    for (const QString& part : textParts(package)) {
        QByteArray bytes;
        if (!package.read(part, bytes)) {
            error = package.error();
            return false;
        }
        QDomDocument doc;
        QString message;
        if (!parseKeepingSpace(doc, bytes, message)) {
            error = QStringLiteral("broken XML in %1 at %2").arg(part, message);
            return false;
        }
        if (convertParagraphs(doc, part, dryRun, conv, changes))
            replaced.insert(part, doc.toByteArray(-1));
    }
    if (dryRun)
        return true;
    return commitWrite(
        out,
        [&](const QString& tmp) {
            const bool ok = package.writeCopy(tmp, replaced);
            if (!ok)
                error = package.error();
            return ok;
        },
        error);
}

namespace {

const char kContentTypes[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
    "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
    "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
    "<Override PartName=\"/word/document.xml\" "
    "ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml\"/>"
    "</Types>";

const char kRootRelationships[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
    "<Relationship Id=\"rId1\" "
    "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument\" "
    "Target=\"word/document.xml\"/>"
    "</Relationships>";

} // namespace

bool writeDocumentFromText(const QString& text, const QString& out, const KDocxConverters& conv,
                           std::vector<KDocxChange>& changes, QString& error)
{
    QDomDocument doc;
    doc.appendChild(doc.createProcessingInstruction(
        QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"")));
    QDomElement root = doc.createElement(QStringLiteral("w:document"));
    root.setAttribute(QStringLiteral("xmlns:w"), kWordNs);
    root.setAttribute(QStringLiteral("xmlns:m"), kMathNs);
    doc.appendChild(root);
    QDomElement body = doc.createElement(QStringLiteral("w:body"));
    root.appendChild(body);
    // Paragraphs are separated by blank lines; the lines of one paragraph are joined by a space.
    QString normalised = text;
    normalised.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    const QStringList blocks = normalised.split(QRegularExpression(QStringLiteral("\\n[ \\t]*\\n")));
    for (const QString& block : blocks) {
        const QString joined = block.split(QLatin1Char('\n')).join(QLatin1Char(' ')).trimmed();
        if (joined.isEmpty())
            continue;
        QDomElement p = doc.createElement(QStringLiteral("w:p"));
        QDomElement r = doc.createElement(QStringLiteral("w:r"));
        QDomElement t = doc.createElement(QStringLiteral("w:t"));
        t.setAttribute(QStringLiteral("xml:space"), QStringLiteral("preserve"));
        t.appendChild(doc.createTextNode(joined));
        r.appendChild(t);
        p.appendChild(r);
        body.appendChild(p);
    }
    body.appendChild(doc.createElement(QStringLiteral("w:sectPr")));
    convertParagraphs(doc, kDocumentPart, false, conv, changes);
    // Runs emptied around a formula carry no text; drop them to keep the document minimal.
    const QDomNodeList ts = doc.elementsByTagName(QStringLiteral("w:t"));
    std::vector<QDomElement> empty;
    for (int i = 0; i < ts.size(); ++i) {
        if (ts.at(i).toElement().text().isEmpty())
            empty.push_back(ts.at(i).parentNode().toElement());
    }
    for (QDomElement& run : empty)
        run.parentNode().removeChild(run);
    const QList<QPair<QString, QByteArray>> entries{
        {QStringLiteral("[Content_Types].xml"), QByteArray(kContentTypes)},
        {QStringLiteral("_rels/.rels"), QByteArray(kRootRelationships)},
        {kDocumentPart, doc.toByteArray(-1)}};
    return commitWrite(
        out, [&](const QString& tmp) { return writeNewPackage(tmp, entries, error); }, error);
}
