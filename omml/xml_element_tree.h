#pragma once
// A compact, read-only element tree: what the OMML reader needs of an XML
// document (qualified names, attributes, text and element children in document
// order) in three flat arrays, with every string in one character buffer.
//
// It is built either by a streaming pass over the text or from a parsed DOM
// document; both give the same tree for the same document, so the reader's
// element walk is written once over this tree.

#include <QString>
#include <QStringView>

#include <algorithm>
#include <cstring>
#include <vector>

class QDomElement;

class KXmlElementTree {
public:
    struct Node {
        int name = 0;       // qualified name of an element, content of a text node
        int nameSize = 0;   //   (offset and length in the character buffer)
        int attributes = 0; // first attribute of an element
        int attributeEnd = 0;
        int firstChild = -1;
        int lastChild = -1;
        int nextSibling = -1;
        bool isText = false;
    };
    struct Attribute {
        int name = 0;
        int nameSize = 0;
        int value = 0;
        int valueSize = 0;
    };

    std::vector<Node> nodes; // nodes[0] is the document element
    std::vector<Attribute> attributes;
    QString chars; // grown ahead; only the first charsUsed characters are meaningful
    int charsUsed = 0;

    QStringView view(int offset, int size) const { return QStringView(chars.constData() + offset, size); }
    // Appends the text to the character buffer and returns its offset.
    int store(QStringView text)
    {
        const int offset = charsUsed;
        const int size = int(text.size());
        if (chars.size() - charsUsed < size)
            chars.resize(std::max(2 * chars.size(), charsUsed + size));
        std::memcpy(static_cast<void*>(chars.data() + offset), text.data(), size_t(size) * sizeof(QChar));
        charsUsed += size;
        return offset;
    }
    // Appends a node as the last child of `parent` (-1: the document element).
    int append(int parent, const Node& node);
};

// One element of a KXmlElementTree; the tree must outlive it.
class KXmlElement {
public:
    KXmlElement() = default;
    KXmlElement(const KXmlElementTree* tree, int index) : m_tree(tree), m_index(index) {}

    bool isNull() const { return !m_tree; }
    QStringView tagName() const;
    // The value of the attribute with this qualified name; empty when missing.
    QString attribute(QLatin1String name) const;
    // The text of all text and CDATA content below the element, in document
    // order, child elements included (comments and processing instructions are not text).
    QString text() const;

    // Calls visit(child, tag) for each element child in document order.
    template <class Visit> void forEachChild(Visit&& visit) const
    {
        for (int i = m_tree->nodes[size_t(m_index)].firstChild; i >= 0;
             i = m_tree->nodes[size_t(i)].nextSibling) {
            const KXmlElementTree::Node& node = m_tree->nodes[size_t(i)];
            if (!node.isText)
                visit(KXmlElement(m_tree, i), m_tree->view(node.name, node.nameSize));
        }
    }

private:
    void appendText(QString& text) const;

    const KXmlElementTree* m_tree = nullptr;
    int m_index = 0;
};

// What the streaming pass made of a text.
enum class KXmlStreamResult {
    read,        // the tree holds the document
    tooDeep,     // well-formed, but nests deeper than the limit
    unsupported, // not well-formed for the streaming parser, or it declares a document
                 // type; the DOM parser decides such text
};

// Reads `xml` into `tree` with a QXmlStreamReader without namespace processing.
// Character data that is nothing but white space (as QChar::isSpace sees it)
// between two pieces of markup is dropped as indentation, except directly
// inside run text (m:t, w:t), where it is content; CDATA sections are kept as
// they are. Elements nested deeper than maxDepth (the
// document element being level 1) make the result tooDeep.
KXmlStreamResult readXmlElementTree(const QString& xml, int maxDepth, KXmlElementTree& tree);

// Copies the element of a parsed DOM document, with its subtree, into `tree`:
// elements with their attributes, text and CDATA nodes; nothing else. Text
// nodes that are only white space are dropped by the same rule as above.
void copyDomElementTree(const QDomElement& element, KXmlElementTree& tree);
