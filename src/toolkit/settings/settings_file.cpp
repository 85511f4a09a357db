#include "toolkit/settings/settings_file.h"

#include "toolkit/base/file_utilities.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QUrl>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <algorithm>

namespace {

using settings_file::Contents;
using settings_file::Entry;

const QLatin1String rootElement("settings");
const QLatin1String propertyElement("property");
const QLatin1String percent("percent");

/// Settings files are much smaller. The limit prevents a wrong file from being read into memory.
constexpr qint64 maxFileBytes = 1 << 20;

bool isPlainXmlText(const QString &text) {
    const auto isPlain = [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0xfffe; };
    return text.isValidUtf16() && std::all_of(text.begin(), text.end(), isPlain);
}

void writeEntry(QXmlStreamWriter &xml, const Entry &entry) {
    const bool plain = isPlainXmlText(entry.text);
    xml.writeStartElement(propertyElement);
    xml.writeAttribute(QStringLiteral("name"), entry.name);
    if (!plain)
        xml.writeAttribute(QStringLiteral("encoding"), percent);
    xml.writeCharacters(plain ? entry.text : QString::fromLatin1(QUrl::toPercentEncoding(entry.text)));
    xml.writeEndElement();
}

QByteArray document(const QVector<Entry> &entries) {
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setCodec("UTF-8");
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(rootElement);
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1"));
    for (const Entry &entry : entries)
        writeEntry(xml, entry);
    xml.writeEndDocument();
    return text;
}

Entry readEntry(QXmlStreamReader &xml) {
    const QString name = xml.attributes().value(QLatin1String("name")).toString();
    const bool encoded = xml.attributes().value(QLatin1String("encoding")) == percent;
    const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
    return {name, encoded ? QUrl::fromPercentEncoding(text.toUtf8()) : text};
}

}  // namespace

Contents settings_file::parse(const QByteArray &document) {
    QXmlStreamReader xml(document);
    Contents contents;
    if (xml.readNextStartElement() && xml.name() != rootElement)
        xml.raiseError(QStringLiteral("the root element is not \"%1\"").arg(rootElement));
    while (xml.readNextStartElement()) {
        if (xml.name() == propertyElement)
            contents.entries.append(readEntry(xml));
        else
            xml.skipCurrentElement();
    }
    while (!xml.atEnd())
        xml.readNext();
    if (xml.hasError())
        return {{}, QStringLiteral("line %1: %2").arg(xml.lineNumber()).arg(xml.errorString()), true};
    return contents;
}

Contents settings_file::read(const QString &path) {
    QFile file(path);
    // Opening a pipe would block until a writer opens it, too.
    if (!QFileInfo(path).isFile())
        return {{}, QT_TRANSLATE_NOOP("VTSettings", "it is not a regular file"), false};
    if (!file.open(QIODevice::ReadOnly))
        return {{}, file.errorString(), false};
    if (file.size() > maxFileBytes)
        return {{}, QStringLiteral("it is too large (%1 bytes)").arg(file.size()), true};
    // Another program may have locked a part of the file, so reading can fail, too.
    const QByteArray document = file.readAll();
    return file.error() == QFileDevice::NoError ? parse(document) : Contents{{}, file.errorString(), false};
}

QString settings_file::write(const QString &path, const QVector<Entry> &entries) {
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        return QStringLiteral("the folder %1 cannot be created").arg(QDir::toNativeSeparators(folder));
    QSaveFile file(path);
    return FileUtilities::save(file, document(entries)) ? QString() : file.errorString();
}

QString settings_file::moveAside(const QString &path) {
    const QString wanted = path + QStringLiteral(".damaged");
    QString name = wanted;
    for (int number = 1; QFileInfo::exists(name); ++number)
        name = QStringLiteral("%1.%2").arg(wanted).arg(number);
    return QDir().rename(path, name) ? name : QString();
}
