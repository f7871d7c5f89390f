#!/usr/bin/python3
"""Cross-checks of the FoxPro table layer against Debian's python3-dbfread and python3-dbf.

Every command prints one line per record: 'L|' or 'D|' (live or deleted), then the values
in a canonical text form that the C++ tests produce too, so that the two readers can be
compared line by line. Live records come first, then deleted ones, each in file order.

  dump-dbfread PATH CODEPAGE   read with dbfread
  dump-dbf PATH [SKIP...]      read with python-dbf (code page from the header), leaving
                               out the fields named SKIP (it cannot read G fields)
  make-dbf PATH CODEPAGE       write a FoxPro table with python-dbf, then dump it
"""
import codecs
import datetime
import decimal
import sys

# Bytes a Windows code page leaves undefined read as the character of the same value, as
# the C++ reader does.
codecs.register_error('samebyte', lambda e: (chr(e.object[e.start]), e.start + 1))


def canon(v):
    if v is None:
        return 'null'
    if isinstance(v, bool):
        return 'b:1' if v else 'b:0'
    if isinstance(v, (int, float, decimal.Decimal)):
        f = float(v)
        if f == int(f) and abs(f) < 1e15:
            return 'n:%d' % int(f)
        return 'n:%.4f' % f
    if isinstance(v, datetime.datetime):
        return 't:' + v.strftime('%Y-%m-%dT%H:%M:%S') + '.%03d' % (v.microsecond // 1000)
    if isinstance(v, datetime.date):
        return 'd:' + v.isoformat()
    if isinstance(v, (bytes, bytearray)):
        return 'x:' + bytes(v).hex() if v else 'null'
    text = str(v).rstrip(' ')
    if not text:
        return 'null'
    return 's:' + text.replace('\\', '\\\\').replace('\n', '\\n').replace('\r', '\\r').replace('|', '\\p')


def dump_dbfread(path, codepage):
    from dbfread import DBF
    table = DBF(path, encoding='cp%s' % codepage, char_decode_errors='samebyte',
                ignore_missing_memofile=True)
    names = [f.name for f in table.fields if f.type != '0']
    for prefix, records in (('L', table), ('D', table.deleted)):
        for rec in records:
            print(prefix + '|' + '|'.join(canon(rec[n]) for n in names))


def dump_dbf(path, skip=()):
    import dbf
    table = dbf.Table(path)
    table.open(dbf.READ_ONLY)
    names = [n for n in table.field_names if n.upper() not in skip]
    rows = [(dbf.is_deleted(r), [canon(r[n]) for n in names]) for r in table]
    table.close()
    for want in (False, True):
        for deleted, values in rows:
            if deleted == want:
                print(('D' if deleted else 'L') + '|' + '|'.join(values))


SAMPLE_TEXT = {
    '437': ['Grüße aus Köln', 'Ñandú ½ ¼', 'façade naïve'],
    '850': ['José Núñez', 'Øre ÆØÅ æøå', 'façade naïve ¾'],
    '1252': ['Café “quoted” €5', 'Ångström — ok', 'œuvre Š Ž'],
}


def make_dbf(path, codepage):
    import dbf
    table = dbf.Table(path, 'NAME C(20); AMOUNT N(10,2); QTY N(6,0); RATE F(12,4); '
                      'BORN D; ACTIVE L; NOTES M', dbf_type='fp', codepage='cp%s' % codepage)
    table.open(dbf.READ_WRITE)
    texts = SAMPLE_TEXT[codepage]
    table.append((texts[0], 1234.5, 42, 3.25, datetime.date(1987, 3, 1), True,
                  texts[1] + '\r\nline two'))
    table.append(('blank row', None, None, None, None, None, ''))
    table.append((texts[2], -0.75, -7, -1000.125, datetime.date(2024, 2, 29), False, 'x' * 300))
    table.append(('deleted', 1, 1, 1, datetime.date(2000, 1, 1), True, texts[0]))
    dbf.delete(table[3])
    table.close()
    dump_dbf(path)


def main():
    command = sys.argv[1]
    if command == 'dump-dbfread':
        dump_dbfread(sys.argv[2], sys.argv[3])
    elif command == 'dump-dbf':
        dump_dbf(sys.argv[2], [s.upper() for s in sys.argv[3:]])
    elif command == 'make-dbf':
        make_dbf(sys.argv[2], sys.argv[3])
    else:
        sys.exit('unknown command ' + command)


if __name__ == '__main__':
    main()
